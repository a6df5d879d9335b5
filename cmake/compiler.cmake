# No -ffast-math and no -march=native: fused arithmetic would move truncated pixels and logged digits.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow)
if(KEST_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()

if(KEST_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
