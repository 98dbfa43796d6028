# gravlin_options: what every target of the project is compiled with.
add_library(gravlin_options INTERFACE)
target_compile_features(gravlin_options INTERFACE cxx_std_20)
target_include_directories(gravlin_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(gravlin_options INTERFACE
  -Wall -Wextra -Wshadow -Wconversion
  # The same bits in every build type: no fused multiply-add that rounds once where the text rounds
  # twice.
  -ffp-contract=off
  # Neither errno nor floating-point exceptions are looked at anywhere; results stay the same bits,
  # and square roots and choices can run side by side.
  -fno-math-errno -fno-trapping-math)
if(GRAVLIN_WERROR)
  target_compile_options(gravlin_options INTERFACE -Werror)
endif()

# This compiler takes "text" + std::string for a copy onto itself where it inlines it (GCC bug
# 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(gravlin_options INTERFACE -Wno-restrict)
endif()

if(GRAVLIN_SANITIZE)
  target_compile_options(gravlin_options INTERFACE
    -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_compile_definitions(gravlin_options INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(gravlin_options INTERFACE -fsanitize=address,undefined)
endif()

if(GRAVLIN_THREAD_SANITIZE)
  target_compile_options(gravlin_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(gravlin_options INTERFACE -fsanitize=thread)
  # With the sanitizer's calls in between, this compiler no longer sees that what an optional holds is
  # looked at only where it holds something.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(gravlin_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

# Counts the branches that an input takes; the targets themselves bring the rest.
if(GRAVLIN_FUZZ)
  target_compile_options(gravlin_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
