# Data files compiled into TrelvoGUI: <file> <resource name> <type>, looked up with LoadFromResource.
set(TRELVO_RESOURCE_DIR ${CMAKE_CURRENT_LIST_DIR})
set(TRELVO_RESOURCE_ENTRIES)
foreach(entry
        "uiatlas.png|UIATLAS|PNG"
        "uiatlasstencil.png|UIATLASSTENCIL|PNG"
        "DejaVuSans.ttf|UIFONT|FONT"
        "DejaVuSans-Bold.ttf|UIFONTBOLD|FONT"
        "triadcube.obj|OBJ_3DWIDGETCUBE|OBJ"
        "triad.png|TRIAD|PNG")
    string(REPLACE "|" ";" parts "${entry}")
    list(GET parts 0 file)
    list(GET parts 1 name)
    list(GET parts 2 type)
    if(EXISTS ${TRELVO_RESOURCE_DIR}/${file})
        list(APPEND TRELVO_RESOURCE_ENTRIES ${TRELVO_RESOURCE_DIR}/${file} ${name} ${type})
    endif()
endforeach()
