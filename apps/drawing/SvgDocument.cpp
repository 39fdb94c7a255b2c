// SPDX-License-Identifier: MIT

#include "SvgDocument.h"

#include "Ascii.h"
#include "Error.h"
#include "Warning.h"

#include <algorithm>
#include <utility>

namespace tool {

namespace {

/// The entities that a document declares, with limits to what they may grow to.
class Entities {
public:
    explicit Entities(std::string_view text) {
        std::size_t at = text.find("<!DOCTYPE");
        while (at != std::string_view::npos &&
               (at = text.find("<!ENTITY", at)) != std::string_view::npos) {
            at = text.find_first_not_of(kXmlSpaces, at + 8);
            std::size_t const end = text.find_first_of(kXmlSpaces, at);
            std::size_t const quote = text.find_first_not_of(kXmlSpaces, end);
            if (quote == std::string_view::npos) {
                return;
            }
            if (text[quote] == '"' || text[quote] == '\'') {
                std::size_t const close = text.find(text[quote], quote + 1);
                mValues.emplace(text.substr(at, end - at),
                                text.substr(quote + 1, close - quote - 1));
                at = close;
            }
        }
    }

    bool Empty() const { return mValues.empty(); }

    /// Returns the text with the values of its entities. Unknown ones stay as they are, and so does
    /// the whole text when it would grow too large.
    std::string Expanded(std::string const& text) {
        std::string out = text;
        std::size_t searched = 0;
        for (std::size_t at = 0; (at = out.find('&', at)) != std::string::npos;) {
            std::size_t const end = out.find(';', at);
            auto const found =
                end == std::string::npos
                    ? mValues.end()
                    : mValues.find(std::string_view(out).substr(at + 1, end - at - 1));
            if (found == mValues.end()) {
                ++at;
                continue;
            }
            searched += found->second.size() + 1;
            if (searched > kMostGrowth || (mGrowth += found->second.size()) > kMostGrowth) {
                return text;
            }
            out.replace(at, end + 1 - at, found->second);
        }
        return out;
    }

private:
    static constexpr std::size_t kMostGrowth = std::size_t{1} << 16;
    std::unordered_map<std::string_view, std::string_view> mValues;
    std::size_t mGrowth = 0;
};

/// Finds names that an element gives to two attributes, of which the parser makes two.
class RepeatedNames {
public:
    /// Returns a name that two attributes of the element have; empty when there is none.
    std::string_view In(pugi::xml_node element) {
        mNames.clear();
        for (pugi::xml_attribute const attribute : element.attributes()) {
            mNames.emplace_back(attribute.name());
        }
        std::sort(mNames.begin(), mNames.end());
        auto const first = std::adjacent_find(mNames.begin(), mNames.end());
        return first != mNames.end() ? *first : std::string_view();
    }

private:
    std::vector<std::string_view> mNames;
};

} // namespace

pugi::xml_attribute LinkOf(pugi::xml_node element) {
    pugi::xml_attribute const href = element.attribute("href");
    return href ? href : element.attribute("xlink:href");
}

SvgDocument::SvgDocument(std::string const& file, std::string text, Encoding encoding)
    : mFile(file), mText(std::move(text)), mEncoding(encoding) {
    for (std::size_t i = mText.find('\n'); i != std::string::npos; i = mText.find('\n', i + 1)) {
        mLineEnds.push_back(i);
    }
    pugi::xml_parse_result result =
        mTree.load_buffer(mText.data(), mText.size(), pugi::parse_default | pugi::parse_fragment,
                          pugi::encoding_utf8);
    if (result && !Root()) { // a fragment needs none
        result.status = pugi::status_no_document_element;
        result.offset = static_cast<std::ptrdiff_t>(mText.size());
    }
    if (!result) {
        std::size_t const offset = std::min(
            static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)), mText.size());
        throw Error(mFile, LineAndColumn(offset),
                    "is no well-formed XML: " + std::string(result.description()));
    }
    std::string_view const name = Root().name();
    std::size_t const colon = name.find(':');
    mRootPrefix = colon == std::string_view::npos ? "" : name.substr(0, colon + 1);
    if (name.substr(mRootPrefix.size()) != "svg") {
        throw Error(mFile, Place(Root()), "is no SVG drawing: its outermost element must be <svg>");
    }
    WarnOfContentOutside();
    Entities entities(mText);
    RepeatedNames repeated;
    // The walk goes from node to node, because the nesting may be deeper than the stack.
    pugi::xml_node node = mTree.first_child();
    while (node) {
        for (pugi::xml_attribute attribute = node.first_attribute(); attribute && !entities.Empty();
             attribute = attribute.next_attribute()) {
            if (std::string_view(attribute.value()).find('&') != std::string_view::npos) {
                attribute.set_value(entities.Expanded(attribute.value()).c_str());
            }
        }
        if (node.type() == pugi::node_element) {
            mElements.push_back(node);
            if (std::string_view const twice = repeated.In(node); !twice.empty()) {
                Warn(mFile, Place(node),
                     "has two attributes " + std::string(twice) + ", of which the first counts");
            }
        }
        if (pugi::xml_attribute const id = node.attribute("id")) {
            mIds.emplace(id.value(), node);
        }
        if (pugi::xml_node const child = node.first_child()) {
            node = child;
            continue;
        }
        while (node && !node.next_sibling()) {
            node = node.parent();
        }
        node = node.next_sibling();
    }
}

void SvgDocument::WarnOfContentOutside() const {
    for (pugi::xml_node const node : mTree.children()) {
        bool const isElement = node.type() == pugi::node_element;
        bool const isText = node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
        if ((isElement && node != Root()) || isText) {
            auto const begin =
                static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
            std::string const place =
                isElement ? Place(node) : LineAndColumn(mText.find_first_not_of(kXmlSpaces, begin));
            Warn(mFile, place, "lies outside of the outermost element and is left out");
            return;
        }
    }
}

pugi::xml_node SvgDocument::Find(std::string_view id) const {
    auto const found = mIds.find(id);
    return found == mIds.end() ? pugi::xml_node() : found->second;
}

pugi::xml_node SvgDocument::Linked(pugi::xml_node element) const {
    std::string_view const link = LinkOf(element).value();
    return link.size() > 1 && link[0] == '#' ? Find(link.substr(1)) : pugi::xml_node();
}

std::string_view SvgDocument::LocalName(pugi::xml_node element) const {
    std::string_view const name = element.name();
    std::size_t const colon = name.find(':');
    std::string_view const prefix =
        colon == std::string_view::npos ? std::string_view() : name.substr(0, colon + 1);
    return prefix == mRootPrefix || prefix == "svg:" ? name.substr(prefix.size())
                                                     : std::string_view();
}

pugi::xml_node SvgDocument::ElementAt(std::size_t offset) const {
    auto const found = std::lower_bound(
        mElements.begin(), mElements.end(), offset,
        [this](pugi::xml_node node, std::size_t value) { return Offset(node) < value; });
    return found != mElements.end() && Offset(*found) == offset ? *found : pugi::xml_node();
}

std::size_t SvgDocument::Offset(pugi::xml_node element) const {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(element.offset_debug(), 1)) - 1;
}

std::size_t SvgDocument::LineOf(std::size_t offset) const {
    auto const end = std::lower_bound(mLineEnds.begin(), mLineEnds.end(), offset);
    return static_cast<std::size_t>(end - mLineEnds.begin()) + 1;
}

std::string SvgDocument::LineAndColumn(std::size_t offset) const {
    std::string_view const before =
        std::string_view(mText).substr(0, std::min(offset, mText.size()));
    std::size_t const lineStart = before.rfind('\n') + 1; // 0 when there is none
    return "line " + std::to_string(LineOf(offset)) + ", column " +
           std::to_string(before.size() - lineStart + 1);
}

std::string SvgDocument::Place(pugi::xml_node element) const {
    std::string place = LineAndColumn(Offset(element)) + ", <" + element.name();
    if (pugi::xml_attribute const id = element.attribute("id")) {
        place += " id=\"" + std::string(id.value()) + "\"";
    }
    return place + ">";
}

} // namespace tool
