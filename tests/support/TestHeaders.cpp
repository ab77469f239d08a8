// Has nothing in it: it is there for the header that is precompiled with it.
