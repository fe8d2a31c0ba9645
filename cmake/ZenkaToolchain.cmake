set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# Both only make the build quicker; it is the same without them.
find_program(ZENKA_CCACHE ccache)
if(ZENKA_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ZENKA_CCACHE}")
endif()
find_program(ZENKA_MOLD mold)
if(ZENKA_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

# Most of a source's time goes into the headers of the libraries, so several are compiled as one: a third of
# the time. The preset debug compiles each alone, as an editor's tools and clang-tidy do.
option(ZENKA_UNITY "Compile the sources of a folder several at a time" ON)
set(ZENKA_UNITY_BATCH 16 CACHE STRING "How many at a time, 0 for a whole folder")
function(zenka_unity target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${ZENKA_UNITY} UNITY_BUILD_BATCH_SIZE ${ZENKA_UNITY_BATCH})
endfunction()

set(ZENKA_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")
if(ZENKA_SANITIZE)
  add_compile_options(-fsanitize=${ZENKA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZENKA_SANITIZE})
endif()

# The contacts are promised to the last bit on every route through the code, so no fused
# multiply-add may be formed in one place and not in another.
add_compile_options(-ffp-contract=off)

add_library(zenka_warnings INTERFACE)
target_compile_options(zenka_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # A record made with designated initializers names what differs from its defaults.
  -Wno-missing-field-initializers
  # Means a class in a header; in a batch of sources it takes each source for one.
  $<$<AND:$<BOOL:${ZENKA_UNITY}>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>
  # False in g++ 12 wherever a string literal is put before a std::string (GCC bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(ZENKA_SANITIZE)
  # What the sanitizers put in confuses g++ here; the preset release keeps the warning.
  target_compile_options(zenka_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
