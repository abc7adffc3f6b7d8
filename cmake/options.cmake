# What every target of this project is compiled with: C++20, warnings, sanitizers.
option(ORV_WARNINGS_AS_ERRORS "Treat warnings as errors (our own presets do)" OFF)
set(ORV_SANITIZERS "" CACHE STRING "Value of -fsanitize=, for example address,undefined")

add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_compile_options(project_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion -Woverloaded-virtual -Wnon-virtual-dtor)
# The cutting planes are the same to the bit on every machine.
target_compile_options(project_options INTERFACE -ffp-contract=off)
if(ORV_WARNINGS_AS_ERRORS)
    target_compile_options(project_options INTERFACE -Werror)
endif()
if(ORV_SANITIZERS)
    target_compile_options(project_options INTERFACE
        -fsanitize=${ORV_SANITIZERS} -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=${ORV_SANITIZERS})
endif()
