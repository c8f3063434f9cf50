// AddressSanitizer's settings, where it is there: what one run gives back is kept from
// being used again, not what a hundred did.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=4:malloc_context_size=8";
}
