// A pad library with one function of one model.
extern "C" __attribute__((visibility("default"))) void MVAlder_Clear(int) {}
