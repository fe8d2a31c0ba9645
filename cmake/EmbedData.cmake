# zenka_embed_data(target file name)
# Builds the bytes of a file of any size into a target. A source of it reads them as
#     namespace zenka::embedded { std::string_view <name>(); }
# The assembler takes the file in as it is, so megabytes cost the compiler nothing, and at run time only
# the pages that are read come into memory. A change of the file rebuilds the one object.

function(zenka_embed_data target file name)
  set(source "${CMAKE_CURRENT_BINARY_DIR}/embedded/${name}.cpp")
  string(REGEX REPLACE "([\\\\\"])" "\\\\\\1" path "${file}")
  string(REGEX REPLACE "([\\\\\"])" "\\\\\\1" path "${path}")
  file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT [=[
#include <cstddef>
#include <string_view>

asm(".section .rodata\n"
    ".balign 16\n"
    ".globl zenka_data_@name@\n"
    ".hidden zenka_data_@name@\n"
    "zenka_data_@name@:\n"
    ".incbin \"@path@\"\n"
    ".globl zenka_data_@name@_end\n"
    ".hidden zenka_data_@name@_end\n"
    "zenka_data_@name@_end:\n"
    ".byte 0\n"
    ".previous\n");

extern "C" {
[[gnu::visibility("hidden")]] extern const char zenka_data_@name@[];
[[gnu::visibility("hidden")]] extern const char zenka_data_@name@_end[];
}

namespace zenka::embedded {
std::string_view @name@();
std::string_view @name@() {
    return {zenka_data_@name@, static_cast<std::size_t>(zenka_data_@name@_end - zenka_data_@name@)};
}
} // namespace zenka::embedded
]=])
  set_property(SOURCE "${source}" APPEND PROPERTY OBJECT_DEPENDS "${file}")
  set_property(SOURCE "${source}" PROPERTY SKIP_UNITY_BUILD_INCLUSION ON)
  target_sources(${target} PRIVATE "${source}")
endfunction()
