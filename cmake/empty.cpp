// A shared library target needs a source of its own; everything else comes from the folders' archives.
