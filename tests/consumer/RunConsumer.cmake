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
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${prefix})
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
