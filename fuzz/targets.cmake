# modelyne_fuzzer(fuzz_<name> SOURCES <name>.cpp LIBS <libraries>)
