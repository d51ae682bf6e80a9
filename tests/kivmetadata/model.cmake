# The metadata model: XMP objects, paths and definitions, typed access and
# providers, files on disk (checked with exiftool when present), user files.
kiv_add_gtest(kivmetadataModelTest
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/XMPMetaTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PathAndDefinitionsTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ValueAccessTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FileProviderTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UserFilesTest.cpp
  LINK kivmetadata Qt6::Core Qt6::Gui)
