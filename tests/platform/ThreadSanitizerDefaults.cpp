// ThreadSanitizer does not see how libraries that were built without it synchronise, so it takes what libdbus,
// GLib, libsecret and Qt do among themselves for races. Our own hand-over between threads goes through
// std::mutex everywhere, and is looked at.
extern "C" {
const char* __tsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier): the name that it asks for

const char* __tsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "called_from_lib:libdbus-1.so\n"
           "called_from_lib:libQt6DBus.so\n"
           "called_from_lib:libQt6Core.so\n"
           "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libgio-2.0.so\n"
           "called_from_lib:libgobject-2.0.so\n"
           "called_from_lib:libsecret-1.so\n";
}
}
