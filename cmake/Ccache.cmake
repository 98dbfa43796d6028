# A second build of the same source costs nothing where ccache is installed.
find_program(GRAVLIN_CCACHE ccache)
if(GRAVLIN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${GRAVLIN_CCACHE})
endif()
