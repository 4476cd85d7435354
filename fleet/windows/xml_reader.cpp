#include <windows.h>

#include <shlwapi.h>
#include <xmllite.h>

#include <list>
#include <memory>
#include <string>

#include "text.h"
#include "xml_reader.h"

using namespace fleet;

namespace {

struct Release {
    void operator()(IUnknown* object) const {
        object->Release();
    }
};

template <typename Interface> using Owned = std::unique_ptr<Interface, Release>;

using CreateReader = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);

// One of the reader's functions for a text.
using TextGetter = HRESULT (STDMETHODCALLTYPE IXmlReader::*)(LPCWSTR*, UINT*);

}  // namespace

// The compiler has no import library for it. Loaded once and kept.
static CreateReader findCreateReader() {
    const HMODULE library = LoadLibraryExW(L"xmllite.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC function = library == nullptr ? nullptr : GetProcAddress(library, "CreateXmlReader");
    return reinterpret_cast<CreateReader>(reinterpret_cast<void*>(function));
}

static Owned<IXmlReader> createReader(std::string_view document) {
    static const CreateReader create = findCreateReader();
    void* made = nullptr;
    if (create == nullptr || FAILED(create(__uuidof(IXmlReader), &made, nullptr))) {
        return nullptr;
    }
    Owned<IXmlReader> reader(static_cast<IXmlReader*>(made));
    const Owned<IStream> stream(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(document.data()), static_cast<UINT>(document.size())));
    const bool ready = stream != nullptr &&
                       SUCCEEDED(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit)) &&
                       SUCCEEDED(reader->SetInput(stream.get()));
    return ready ? std::move(reader) : nullptr;
}

static std::string textFrom(IXmlReader& reader, TextGetter getter) {
    const wchar_t* text = nullptr;
    UINT length = 0;
    if (FAILED((reader.*getter)(&text, &length))) {
        return "";
    }
    return utf8Of({reinterpret_cast<const char16_t*>(text), length});
}

static bool visitElement(IXmlReader& reader, XmlVisitor& visitor) {
    const std::string name = textFrom(reader, &IXmlReader::GetQualifiedName);
    const bool isEmpty = reader.IsEmptyElement() != FALSE;
    std::list<std::string> texts;  // its elements stay where they are
    XmlAttributes attributes;
    for (HRESULT next = reader.MoveToFirstAttribute(); next == S_OK; next = reader.MoveToNextAttribute()) {
        const std::string& attribute = texts.emplace_back(textFrom(reader, &IXmlReader::GetQualifiedName));
        attributes.emplace_back(attribute, texts.emplace_back(textFrom(reader, &IXmlReader::GetValue)));
    }
    return visitor.startElement(name, attributes) && (!isEmpty || visitor.endElement());
}

static bool visitNode(XmlNodeType type, IXmlReader& reader, XmlVisitor& visitor) {
    switch (type) {
    case XmlNodeType_Element:
        return visitElement(reader, visitor);
    case XmlNodeType_EndElement:
        return visitor.endElement();
    case XmlNodeType_Text:
    case XmlNodeType_CDATA:
        return visitor.text(textFrom(reader, &IXmlReader::GetValue));
    case XmlNodeType_DocumentType:
        return false;
    default:
        return true;
    }
}

bool fleet::readXml(std::string_view document, XmlVisitor& visitor) {
    const Owned<IXmlReader> reader = createReader(document);
    if (reader == nullptr) {
        return false;
    }
    XmlNodeType type = XmlNodeType_None;
    HRESULT next = reader->Read(&type);
    for (; next == S_OK; next = reader->Read(&type)) {
        if (!visitNode(type, *reader, visitor)) {
            return false;
        }
    }
    return next == S_FALSE;  // the end of the document
}
