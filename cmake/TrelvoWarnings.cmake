# Warnings apply to our own targets only, so third-party headers pulled in as SYSTEM stay quiet.
function(trelvo_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(TRELVOGUI_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
