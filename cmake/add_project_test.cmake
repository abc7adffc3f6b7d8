# add_project_test(name [GUI] SOURCES .. LIBS ..)
#
# One test program and its entry in CTest, labelled "unit" (GoogleTest) or "gui"
# (Qt Test, with moc). Every test runs without a display and in a home folder of
# its own, so that none depends on the machine or on another test.
set(ORV_TEST_TIMEOUT 300 CACHE STRING "Seconds after which a test counts as hung")

function(add_project_test name)
    cmake_parse_arguments(arg "GUI" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE project_options ${arg_LIBS})
    if(arg_GUI)
        set(label gui)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PRIVATE Qt6::Test)
    else()
        set(label unit)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()

    set(home ${CMAKE_CURRENT_BINARY_DIR}/home/${name})
    file(MAKE_DIRECTORY ${home}/.config)
    add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY ${home})
    set_tests_properties(${name} PROPERTIES
        LABELS ${label}
        TIMEOUT ${ORV_TEST_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_SCALE_FACTOR=1;LC_ALL=C.UTF-8;HOME=${home};XDG_CONFIG_HOME=${home}/.config")
endfunction()
