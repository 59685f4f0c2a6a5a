// Lists of words in one go. The generated routines are compiled with xdr_array standing for this one: a block
// of registers would take two calls of libtirpc for each word otherwise.
#pragma once

#include <rpc/rpc.h>

#ifdef __cplusplus
extern "C" {
#endif

// As xdr_array() of libtirpc, which it leaves everything but lists of words to. A list that is decoded into a
// null pointer gets memory from malloc(), which the caller frees by xdr_free(). Any thread.
bool_t orvane_sim_xdr_array(XDR* stream, char** elements, u_int* count, u_int most, u_int size,
                            xdrproc_t element);

#ifdef __cplusplus
}
#endif
