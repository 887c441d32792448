// A pad library that needs another one, which is not on the machine.
extern "C" int NeededByTheLibrary();
extern "C" __attribute__((visibility("default"))) int MVAlder_UnInitialDevice(int)
{
    return NeededByTheLibrary();
}
