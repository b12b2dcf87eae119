# pairscope_layer(NAME DEPS...): one library per folder, its sources found by globbing so that
# adding a file needs no edit here. Only the listed layers are visible to its includes: the
# include root is the repository, but each layer exposes itself alone.
function(pairscope_layer name)
  file(GLOB sources CONFIGURE_DEPENDS
       ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB resources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.qrc)
  set(stage ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${stage})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${stage}/${name} SYMBOLIC)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  if(NOT sources)
    # A layer with no code yet still exists, so that the layers above can name it.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${stage})
    target_link_libraries(${name} INTERFACE ${ARGN})
    return()
  endif()
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources} ${headers} ${resources})
  set_target_properties(${name} PROPERTIES AUTORCC ON)
  # Headers are included as "engine/ComparisonFile.h": the include root is a staging folder
  # holding only this layer, so another layer's header is found only through a link.
  target_include_directories(${name} PUBLIC ${stage})
  target_link_libraries(${name} PUBLIC ${ARGN})
endfunction()

# pairscope_tests(LAYER LIBS...): every tst_*.cpp in the current folder becomes one CTest test.
function(pairscope_tests layer)
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
  foreach(src IN LISTS tests)
    get_filename_component(name ${src} NAME_WE)
    add_executable(${name} ${src})
    target_link_libraries(${name} PRIVATE ${ARGN} Qt6::Test testsupport)
    add_test(NAME ${layer}/${name} COMMAND ${name})
    set_tests_properties(${layer}/${name} PROPERTIES
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0"
      TIMEOUT 300)
  endforeach()
endfunction()

# pairscope_benchmarks(LIBS...): every .cpp in the current folder becomes one benchmark program
# linked to LIBS. Benchmarks are built but never run as tests.
function(pairscope_benchmarks)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(src IN LISTS sources)
    get_filename_component(name ${src} NAME_WE)
    add_executable(${name} ${src})
    target_link_libraries(${name} PRIVATE ${ARGN})
  endforeach()
endfunction()
