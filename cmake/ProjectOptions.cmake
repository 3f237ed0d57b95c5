# Warnings and sanitizers shared by every target of the project.

add_library(vlm_options INTERFACE)
target_compile_options(vlm_options INTERFACE -Wall -Wextra -Wpedantic)

# GCC 12 misreads libstdc++'s own code in two places, whatever the caller writes: optimised
# at -O3 (Release), string concatenation ("text" + std::string) as overlapping copies
# (-Wrestrict); under AddressSanitizer's instrumentation, the std::function inside
# std::regex as maybe uninitialized. Both are the compiler's false positives, gone in
# GCC 13; they are silenced only where they occur, so every other warning stays.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(vlm_options INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
    if(VLM_SANITIZE STREQUAL "address")
        target_compile_options(vlm_options INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()

if(VLM_SANITIZE STREQUAL "address")
    set(_vlm_san -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
elseif(VLM_SANITIZE STREQUAL "thread")
    set(_vlm_san -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT VLM_SANITIZE STREQUAL "")
    message(FATAL_ERROR "VLM_SANITIZE must be empty, 'address' or 'thread', not '${VLM_SANITIZE}'")
endif()
if(DEFINED _vlm_san)
    add_compile_options(${_vlm_san})
    add_link_options(${_vlm_san})
endif()

# vlm_target_defaults(target): warnings on, headers found from the source root.
function(vlm_target_defaults target)
    target_link_libraries(${target} PRIVATE vlm_options)
endfunction()
