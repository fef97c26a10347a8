// A library whose entry says that it could add no modules.

extern "C" __declspec(dllexport) int AddModules(void* /*modules*/) { return 7; }
