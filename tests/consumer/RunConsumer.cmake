file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# The embedding example is taken from its documentation, so that the page
# shows code that builds and runs: each file follows a "<!-- file: NAME -->"
# line as the next fenced block.
file(READ ${DOCS_FILE} docs)
foreach(name HostWindow.h main.cpp)
  string(FIND "${docs}" "<!-- file: ${name} -->" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${DOCS_FILE} gives no ${name}")
  endif()
  string(SUBSTRING "${docs}" ${at} -1 rest)
  string(FIND "${rest}" "```cpp\n" open)
  math(EXPR open "${open} + 7")
  string(SUBSTRING "${rest}" ${open} -1 rest)
  string(FIND "${rest}" "\n```" close)
  math(EXPR close "${close} + 1")
  string(SUBSTRING "${rest}" 0 ${close} code)
  file(WRITE ${WORK_DIR}/example/${name} "${code}")
endforeach()

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${prefix}
    -DEXAMPLE_DIR=${WORK_DIR}/example "-DCMAKE_CXX_FLAGS=${CONSUMER_FLAGS}"
    "-DCMAKE_EXE_LINKER_FLAGS=${CONSUMER_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/lib:${prefix}/lib64 QT_QPA_PLATFORM=offscreen
    ${WORK_DIR}/build/consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "unexpected output: ${last_output}")
endif()

# The installed application starts from its prefix without help, and edits a
# file there. The CMAKE_INSTALL_PREFIX the build was configured with is not
# used: the run path must be relative.
file(WRITE ${WORK_DIR}/note.xmp "")
run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH QT_QPA_PLATFORM=offscreen
    ${prefix}/bin/kivmeta --set dc:title=Installed ${WORK_DIR}/note.xmp)
run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH QT_QPA_PLATFORM=offscreen
    ${prefix}/bin/kivmeta --dump ${WORK_DIR}/note.xmp)
if(NOT last_output MATCHES "Installed")
  message(FATAL_ERROR "the installed kivmeta did not edit the file: ${last_output}")
endif()
