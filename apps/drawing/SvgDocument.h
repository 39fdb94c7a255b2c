// SPDX-License-Identifier: MIT

// SvgDocument: an SVG file as it was read, so that commands can change parts of it and leave every
// other byte alone. The XML parser finds the elements; changes go into the text itself.

#ifndef TRAMMEL_APP_SVGDOCUMENT_H
#define TRAMMEL_APP_SVGDOCUMENT_H

#include "TextEncoding.h"

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tool {

/// Returns the attribute with which an element refers to another one, if it has one.
pugi::xml_attribute LinkOf(pugi::xml_node element);

/// A file's text and its elements.
class SvgDocument {
public:
    /// Parses the text of a file. Throws Error unless it is a well-formed SVG document. Warns of
    /// attributes that an element has twice, and of the first content beside the outermost element.
    /// \param text  in UTF-8
    /// \param encoding  of the file
    SvgDocument(std::string const& file, std::string text, Encoding encoding);
    SvgDocument(SvgDocument const&) = delete;
    SvgDocument& operator=(SvgDocument const&) = delete;

    std::string const& File() const { return mFile; }
    /// Returns the text in UTF-8, byte order mark included. All offsets count from its start.
    std::string const& Text() const { return mText; }
    /// Returns a text of this document in the encoding of its file.
    std::string Encoded(std::string const& text) const { return tool::Encoded(text, mEncoding); }

    /// Returns the outermost element.
    pugi::xml_node Root() const { return mTree.document_element(); }
    /// Returns all elements, in the order of the text.
    std::vector<pugi::xml_node> const& Elements() const { return mElements; }
    /// Returns the first element with this id, or no node.
    pugi::xml_node Find(std::string_view id) const;
    /// Returns the element of this document to which an element refers, or no node.
    pugi::xml_node Linked(pugi::xml_node element) const;
    /// Returns the name of an SVG element without its prefix; empty for other vocabularies.
    std::string_view LocalName(pugi::xml_node element) const;
    /// Returns the element whose '<' stands at this offset, or no node.
    pugi::xml_node ElementAt(std::size_t offset) const;
    /// Returns the offset of the element's '<'.
    std::size_t Offset(pugi::xml_node element) const;
    /// Returns the line of an offset, from 1.
    std::size_t LineOf(std::size_t offset) const;
    /// Returns "line L, column C" of an offset.
    std::string LineAndColumn(std::size_t offset) const;
    /// Returns the element's place and its tag: "line 2, column 1, <path id="p">".
    std::string Place(pugi::xml_node element) const;

private:
    void WarnOfContentOutside() const;

    std::string mFile;
    std::string mText;
    Encoding mEncoding;
    std::string mRootPrefix; ///< of the root element's name, colon included
    pugi::xml_document mTree;
    std::unordered_map<std::string_view, pugi::xml_node> mIds;
    std::vector<pugi::xml_node> mElements; ///< in the order of the text
    std::vector<std::size_t> mLineEnds;    ///< the offsets of '\n'
};

} // namespace tool

#endif
