// What assistive technology sees of a window that is a plain QWidget. The toolkit calls it a container without
// a meaning; this one says that it is a window, so that a screen reader announces it by its title. Threads:
// main thread only.
#pragma once

namespace fernwick {

// From now on every such window answers so. Calling it again does nothing.
void installWindowAccess();

} // namespace fernwick
