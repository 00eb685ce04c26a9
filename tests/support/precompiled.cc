// precompiled.cc: nothing of its own. The target of this file compiles the headers that nearly
// every test includes, once; see tests/CMakeLists.txt.
