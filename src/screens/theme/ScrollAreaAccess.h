// What assistive technology sees of a scrolling area. The toolkit's own answer to "your child number n" reads
// past the end of a list when a scroll bar has gone since the children were counted, and takes the process with
// it; this one answers that there is no such child. It is a pane, which is spoken by its name. Threads: main
// thread only.
#pragma once

namespace fernwick {

// From now on every QScrollArea answers so. Calling it again does nothing.
void installScrollAreaAccess();

} // namespace fernwick
