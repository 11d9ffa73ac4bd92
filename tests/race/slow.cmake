# Read by CTest. gtest_discover_tests cannot give a test two labels, so this file adds the second one.
foreach(test IN LISTS kestrix_race_test_FULL)
  set_tests_properties("${test}" PROPERTIES LABELS "race;slow")
endforeach()
