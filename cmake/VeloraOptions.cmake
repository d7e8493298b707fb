# One INTERFACE target that carries the language standard and the warning policy to every
# target of the project, tests included. Warnings are errors when the environment variable
# CI is set.
add_library(velora_options INTERFACE)
target_compile_features(velora_options INTERFACE cxx_std_17)
set(CMAKE_CXX_EXTENSIONS OFF)

if(MSVC)
    target_compile_options(velora_options INTERFACE /W4 /utf-8)
    if(DEFINED ENV{CI})
        target_compile_options(velora_options INTERFACE /WX)
    endif()
else()
    target_compile_options(velora_options INTERFACE -Wall -Wextra -Wpedantic)
    if(DEFINED ENV{CI})
        target_compile_options(velora_options INTERFACE -Werror)
    endif()
endif()

target_compile_definitions(velora_options INTERFACE QT_NO_CAST_FROM_BYTEARRAY)

if(VELORA_SANITIZE AND NOT MSVC)
    target_compile_options(velora_options INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer)
    target_link_options(velora_options INTERFACE -fsanitize=address,undefined)
endif()
