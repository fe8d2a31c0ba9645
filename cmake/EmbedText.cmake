# zenka_embed_text(target file name)
# Builds the bytes of a text file into a target. A source of it reads them as
#     namespace zenka::embedded { extern const std::string_view <name>; }
# The file stays what people edit; a change of it rebuilds the one object.
set(ZENKA_EMBED_SCRIPT "${CMAKE_CURRENT_LIST_FILE}")

function(zenka_embed_text target file name)
  set(source "${CMAKE_CURRENT_BINARY_DIR}/embedded/${name}.cpp")
  add_custom_command(
    OUTPUT "${source}"
    COMMAND "${CMAKE_COMMAND}" "-DINPUT=${file}" "-DOUTPUT=${source}" "-DNAME=${name}"
            -P "${ZENKA_EMBED_SCRIPT}"
    DEPENDS "${file}" "${ZENKA_EMBED_SCRIPT}"
    COMMENT "Embedding ${name}"
    VERBATIM)
  set_property(SOURCE "${source}" PROPERTY SKIP_UNITY_BUILD_INCLUSION ON)
  target_sources(${target} PRIVATE "${source}")
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  # An array and not a literal: a compiler need not take a literal beyond 64 KB.
  file(READ "${INPUT}" bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  string(REGEX REPLACE "('[^']*','[^']*','[^']*','[^']*','[^']*','[^']*','[^']*','[^']*',)" "\\1\n" bytes
                       "${bytes}")
  file(WRITE "${OUTPUT}" "#include <string_view>

namespace zenka::embedded {
namespace {
constexpr char bytes[] = {
${bytes}
};
} // namespace
extern const std::string_view ${NAME};
constinit const std::string_view ${NAME}{bytes, sizeof bytes};
} // namespace zenka::embedded
")
endif()
