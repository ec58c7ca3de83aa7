# modelyne_fuzzer(fuzz_<name> SOURCES <name>.cpp LIBS <libraries>)
modelyne_fuzzer(fuzz_explain_csv SOURCES explain_csv.cpp LIBS modelyne_explain)
