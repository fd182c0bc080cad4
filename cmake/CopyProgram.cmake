# Brings a program folder that is played in up to the one that ships.
#   cmake -D FROM=... -D TO=... -P CopyProgram.cmake
# What the player writes there (settings, journal, cache) is left alone; so is a file the user has changed since.
file(GLOB_RECURSE files RELATIVE ${FROM} ${FROM}/*)
file(MAKE_DIRECTORY ${TO}/cache)
foreach(name IN LISTS files)
    if(name STREQUAL "settings.xml" AND EXISTS ${TO}/${name})
        continue()
    endif()
    # A copy has the time of what it was made from, and of two equals each counts as newer.
    if(NOT EXISTS ${TO}/${name} OR NOT ${TO}/${name} IS_NEWER_THAN ${FROM}/${name})
        get_filename_component(folder ${TO}/${name} DIRECTORY)
        # Under another name first: the program may be running.
        get_filename_component(leaf ${name} NAME)
        file(COPY ${FROM}/${name} DESTINATION ${TO}/.new)
        file(MAKE_DIRECTORY ${folder})
        file(RENAME ${TO}/.new/${leaf} ${TO}/${name})
    endif()
endforeach()
file(REMOVE_RECURSE ${TO}/.new)
