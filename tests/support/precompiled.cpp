// A program without content: its precompiled header serves every test program.
int main() { return 0; }
