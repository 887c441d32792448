// What the needy library needs.
extern "C" __attribute__((visibility("default"))) int NeededByTheLibrary()
{
    return 1;
}
