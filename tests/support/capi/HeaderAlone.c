/* Stands behind the one header that a compilation is about, so that it is not empty. */
extern int nothing_more;
