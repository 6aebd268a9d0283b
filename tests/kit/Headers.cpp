// Nothing of its own: the precompiled header of all tests needs a source to be built with.
