# Read by CTest. gtest_discover_tests can't give a test two labels, so the second is put on here.
foreach(test IN LISTS kestrix_race_test_FULL)
  set_tests_properties("${test}" PROPERTIES LABELS "race;slow")
endforeach()
