#include "ofp/query.h"
#include "query/list.h"

OFP_API void OFP_get_InitVerbose(OfpVerbose *verbose)
{
    *verbose = {};
    ofp::clear_links(&verbose->controllers);
    ofp::clear_links(&verbose->running.interfaces);
    ofp::clear_links(&verbose->configured.interfaces);
}

OFP_API void OFP_get_FiniVerbose(OfpVerbose *verbose)
{
    ofp::free_elements(&verbose->controllers);
    ofp::free_elements(&verbose->running.interfaces);
    ofp::free_elements(&verbose->configured.interfaces);
}
