// Nothing of its own: the precompiled header of all tests needs a program to be built with.
int main() { return 0; }
