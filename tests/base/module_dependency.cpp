extern "C" int exportedByDependency() { return 2; }
