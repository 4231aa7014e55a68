tavuro_add_fuzzer(fuzz_plist_xml SOURCES fuzz_plist_xml.cpp
  CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/plist_xml)
tavuro_add_fuzzer(fuzz_plist_binary SOURCES fuzz_plist_binary.cpp
  CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/plist_binary)
