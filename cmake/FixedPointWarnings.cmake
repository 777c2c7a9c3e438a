# Warning flags shared by every target of the project.
add_library(fixedpoint_warnings INTERFACE)
target_compile_options(fixedpoint_warnings INTERFACE -Wall -Wextra -Wpedantic)
if(FIXEDPOINT_WERROR)
    target_compile_options(fixedpoint_warnings INTERFACE -Werror)
endif()
