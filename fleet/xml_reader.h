// Reads an XML document: by Expat on Linux, by the system's XmlLite on Windows.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace fleet {

// Names with their values, in the order of the document. They last as long as the call that gets them.
using XmlAttributes = std::vector<std::pair<std::string_view, std::string_view>>;

// Receives the content of a document in its order. A function that returns false ends the reading.
class XmlVisitor {
public:
    virtual bool startElement(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual bool endElement() = 0;
    virtual bool text(std::string_view piece) = 0;  // one text may come in several pieces

protected:
    ~XmlVisitor() = default;
};

// Reads a document, which has to be UTF-8. Returns false when it is not well formed, when it has a document type, or
// when the visitor ended the reading. Comments and processing instructions are skipped. No entity is defined but the
// five of XML itself, and no other file is ever opened.
bool readXml(std::string_view document, XmlVisitor& visitor);

}  // namespace fleet
