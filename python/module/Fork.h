// Tells a process from the one that it was forked from.
#pragma once

namespace OrvanePython {

// Once, before any object is made that asks for the generation.
void watchForks();

// 0 in the process that loaded the module, another number in each child that came by fork(). What was made in
// one generation is the business of that process alone: a child neither sends nor waits on its behalf.
unsigned generation() noexcept;

} // namespace OrvanePython
