# Embeds data files into a target as named resources. The generated source registers every file with
# the companion layer's resource registry under (module, file name, type) at load time, so an
# installed library needs no files on disk.
set(TRELVO_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedFiles.cmake)

function(trelvo_embed_resources target module)
    cmake_parse_arguments(ARG "" "OUTPUT;FUNCTION" "ENTRIES" ${ARGN})
    # ENTRIES is a flat list: <file> <resource name> <type> ...
    set(files)
    set(manifest)
    list(LENGTH ARG_ENTRIES n)
    set(i 0)
    while(i LESS n)
        math(EXPR j "${i} + 1")
        math(EXPR k "${i} + 2")
        list(GET ARG_ENTRIES ${i} file)
        list(GET ARG_ENTRIES ${j} name)
        list(GET ARG_ENTRIES ${k} type)
        list(APPEND files ${file})
        string(APPEND manifest "${file}|${name}|${type};")
        math(EXPR i "${i} + 3")
    endwhile()
    set(out ${CMAKE_CURRENT_BINARY_DIR}/${ARG_OUTPUT})
    set(manifestfile ${CMAKE_CURRENT_BINARY_DIR}/${ARG_OUTPUT}.list)
    file(WRITE ${manifestfile}.in "${manifest}")
    configure_file(${manifestfile}.in ${manifestfile} COPYONLY)
    add_custom_command(OUTPUT ${out}
        COMMAND ${CMAKE_COMMAND} -DMANIFEST=${manifestfile} -DOUT=${out} -DMODULE=${module} -DFUNCTION=${ARG_FUNCTION}
                -P ${TRELVO_EMBED_SCRIPT}
        DEPENDS ${files} ${manifestfile} ${TRELVO_EMBED_SCRIPT}
        COMMENT "Embedding resources into ${target}")
    target_sources(${target} PRIVATE ${out})
endfunction()
