// A Mach-O object of another architecture, for universal files without arm64.
int x86Fixture(int x) { return x + 1; }
