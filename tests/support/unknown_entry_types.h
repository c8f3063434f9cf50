// Makes directory listings leave the types of their entries out, as those of some file
// systems do.
//
// The test programs are linked with --wrap for readdir, so the calls that our own
// objects make go through here; the libraries' own calls do not.

#pragma once

// While it lives, every entry is of unknown type. One at a time.
class UnknownEntryTypes
{
public:
    UnknownEntryTypes();
    ~UnknownEntryTypes();
    UnknownEntryTypes(const UnknownEntryTypes&) = delete;
    UnknownEntryTypes& operator=(const UnknownEntryTypes&) = delete;
};
