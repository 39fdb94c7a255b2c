// SPDX-License-Identifier: MIT

#include "SvgShortestText_p.h"

#include <cstring>
#include <limits>
#include <memory>
#include <utility>

namespace trammel_detail {

void SvgShortestText::BeginElement() {
    if (++mCount > mElements.size()) {
        mElements.push_back(std::make_unique<Element>());
    }
    At(mCount - 1).count = 0;
}

void SvgShortestText::AddSpelling(char letter, char repeats, SvgNumerals const& numerals,
                                  std::size_t begin) {
    if (!numerals.valid) {
        return;
    }
    Element& element = At(mCount - 1);
    Spelling& spelling = element.spellings[element.count++];
    spelling.letter = letter;
    spelling.repeats = repeats;
    spelling.fraction = false;
    char* end = spelling.numbers;
    for (std::size_t i = begin; i < numerals.count; ++i) {
        SvgNumeral const& numeral = numerals.items[i];
        char const first = numeral.text[0];
        if (i > begin && first != '-' && !(first == '.' && spelling.fraction)) {
            *end++ = ' ';
        }
        std::memcpy(end, numeral.text, sizeof numeral.text); // of a known size: a few instructions
        end += numeral.length;
        spelling.fraction = numeral.fraction;
    }
    spelling.size = static_cast<std::size_t>(end - spelling.numbers);
}

void SvgShortestText::EndElement() {
    Element& element = At(mCount - 1);
    bool settled = true;
    for (std::size_t i = 0; i < element.count; ++i) {
        Spelling& spelling = element.spellings[i];
        spelling.cost = std::numeric_limits<std::size_t>::max();
        if (mCount == 1) {
            spelling.from = 0;
            spelling.cost = Cost(mSettled, spelling);
            continue;
        }
        Element const& before = At(mCount - 2);
        for (std::size_t j = 0; j < before.count; ++j) {
            std::size_t const cost = before.spellings[j].cost + Cost(before.spellings[j], spelling);
            bool const tie = cost == spelling.cost;
            // On a tie the shorter one wins: the others then go back to it as well.
            if (cost < spelling.cost ||
                (tie && before.spellings[j].cost < before.spellings[spelling.from].cost)) {
                spelling.cost = cost;
                spelling.from = j;
            }
        }
        settled = settled && spelling.from == element.spellings[0].from;
    }
    if (settled && mCount > 1) {
        Settle(mCount - 1, element.spellings[0].from);
        std::swap(mElements[0], mElements[mCount - 1]);
        mCount = 1;
    }
}

std::string SvgShortestText::Take() {
    if (mCount > 0) {
        Element const& last = At(mCount - 1);
        std::size_t best = 0;
        for (std::size_t i = 1; i < last.count; ++i) {
            if (last.spellings[i].cost < last.spellings[best].cost) {
                best = i;
            }
        }
        Settle(mCount, best);
    }
    return std::move(mText);
}

/// Returns the character between two spellings: a letter, a space or, as 0, nothing.
char SvgShortestText::Joint(Spelling const& before, Spelling const& after) {
    if (after.letter != before.repeats) {
        return after.letter;
    }
    if (after.size == 0) {
        return 0;
    }
    char const first = after.numbers[0];
    return first == '-' || (first == '.' && before.fraction) ? '\0' : ' ';
}

std::size_t SvgShortestText::Cost(Spelling const& before, Spelling const& spelling) {
    return (Joint(before, spelling) != 0 ? 1 : 0) + spelling.size;
}

/// Writes the first `count` elements, the last of them in the spelling `choice`.
void SvgShortestText::Settle(std::size_t count, std::size_t choice) {
    mChoices.resize(count);
    for (std::size_t i = count; i-- > 0;) {
        mChoices[i] = choice;
        choice = At(i).spellings[choice].from;
    }
    for (std::size_t i = 0; i < count; ++i) {
        Spelling const& spelling = At(i).spellings[mChoices[i]];
        char const joint = Joint(mSettled, spelling);
        if (joint != 0) {
            mText += joint;
        }
        mText.append(spelling.numbers, spelling.size);
        mSettled.letter = spelling.letter;
        mSettled.repeats = spelling.repeats;
        mSettled.fraction = spelling.fraction;
    }
}

} // namespace trammel_detail
