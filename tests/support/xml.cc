// The check that a trace is an XML document, by libxml2.

#include "codec_tools.h"

#include <libxml/parser.h>

namespace quorva::test {

bool isXml(const std::string& text)
{
    const int options = XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_HUGE;
    xmlDoc* const document = xmlReadMemory(text.data(), static_cast<int>(text.size()), "trace.xml", "UTF-8", options);
    xmlFreeDoc(document);
    return document != nullptr;
}

}  // namespace quorva::test
