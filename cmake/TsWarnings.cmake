# Warnings apply to our own targets only (not to third-party headers).
function(ts_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wno-missing-field-initializers)
    if(TS_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
