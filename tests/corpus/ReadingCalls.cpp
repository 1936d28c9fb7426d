// The reading calls of the fuzz target fuzz_open, for this test. CMake gives a test the sources of its directory only.
#include "fuzz/support/Readers.cpp"     // NOLINT(bugprone-suspicious-include)
#include "fuzz/support/Transcript.cpp"  // NOLINT(bugprone-suspicious-include)
