#pragma once

namespace korvo {

/// Bounds what this process, which is about to read a file that nobody trusts, can do from now on: its
/// memory, and to read files, write into what is open already, and think. It can no longer open files for
/// writing, nor change, rename or remove them, nor start programs or other processes, nor speak to other
/// processes or the network: such calls fail with EPERM. A kernel that cannot filter leaves the bounds of
/// memory.
void fenceIn();

} // namespace korvo
