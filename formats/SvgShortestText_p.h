// SPDX-License-Identifier: MIT

// Joins the elements of SVG path text into the shortest text. Not installed.

#ifndef TRAMMEL_SVGSHORTESTTEXT_P_H
#define TRAMMEL_SVGSHORTESTTEXT_P_H

#include "SvgNumeral_p.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace trammel_detail {

/// Numerals for the coordinates of up to three points, h before v.
struct SvgNumerals {
    std::array<SvgNumeral, 6> items;
    std::size_t count = 0;
    bool valid = true;
};

/// Joins elements, of which each can be spelled in several ways, into the shortest text.
///
/// The cost of a spelling depends only on the spelling before it. The shortest text that ends in a
/// given spelling therefore follows from the shortest texts for the element before. This is a
/// shortest path, found by dynamic programming. As soon as all spellings of an element go back to
/// one spelling, the text up to that one is settled.
///
/// For each element in turn, call BeginElement, AddSpelling for every spelling, and EndElement.
/// Call Take last.
class SvgShortestText {
public:
    /// Begins a new element. The spellings added after this call are its own.
    void BeginElement();

    /// Adds a spelling to the element, or nothing where the numerals are not valid. An element
    /// takes four spellings at most. Equally short texts are chosen from by a fixed rule.
    /// \param letter the command; 0 writes no letter.
    /// \param repeats the command that numbers without a letter mean after this spelling; 0 when
    ///     they mean none.
    /// \param begin the index of the first numeral that is written.
    void AddSpelling(char letter, char repeats, SvgNumerals const& numerals, std::size_t begin = 0);

    /// Ends the element, which has at least one spelling.
    void EndElement();

    /// Ends the text and returns it; nothing may be added after that.
    std::string Take();

private:
    /// Room for six numerals and the separators between them. A numeral is copied as a whole, with
    /// what lies behind its end.
    static constexpr std::size_t kMostCharacters = 6 * (sizeof(SvgNumeral::text) + 1);

    /// One way to spell an element.
    struct Spelling {
        char letter = 0;       ///< as AddSpelling takes it
        char repeats = 0;      ///< as AddSpelling takes it
        bool fraction = false; ///< the last number has a point or an exponent
        std::size_t size = 0;  ///< the characters of `numbers` in use
        std::size_t cost = 0;  ///< the length of the shortest text up to and with this spelling
        std::size_t from = 0;  ///< the spelling of the element before in that text
        char numbers[kMostCharacters]; ///< with the separators between them
    };
    struct Element {
        std::array<Spelling, 4> spellings;
        std::size_t count = 0;
    };

    Element& At(std::size_t i) { return *mElements[i]; }
    static char Joint(Spelling const& before, Spelling const& after);
    static std::size_t Cost(Spelling const& before, Spelling const& spelling);
    void Settle(std::size_t count, std::size_t choice);

    /// From mCount on unused: they only keep their memory.
    std::vector<std::unique_ptr<Element>> mElements;
    std::size_t mCount = 0;            ///< the number of elements that are not settled
    std::vector<std::size_t> mChoices; ///< the spellings of the elements that are being settled
    Spelling mSettled;                 ///< the last settled one, without its numbers
    std::string mText;                 ///< all settled elements
};

} // namespace trammel_detail

#endif
