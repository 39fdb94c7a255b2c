// SPDX-License-Identifier: MIT

// SvgEdit: changes to an SVG document that leave every other byte as it is.
//
// Elements are named by the offset of their '<', as an OutlineSource has it. Nothing happens to the
// document before Text(), which returns a copy with all changes.

#ifndef TRAMMEL_APP_SVGEDIT_H
#define TRAMMEL_APP_SVGEDIT_H

#include "Cascade.h"
#include "SvgDocument.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/CPath.h>
#include <trammel/TRect.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tool {

/// Changes to one document.
class SvgEdit {
public:
    /// \param digits  the decimals of new coordinates; empty: as many as read back the same number
    SvgEdit(std::shared_ptr<SvgDocument const> document, std::optional<int> digits);

    /// Sets a property, in the place where its winning declaration stands: the style attribute if
    /// style sheets or this attribute declare it, otherwise the attribute of its name.
    void SetProperty(std::size_t element, Property property, std::string const& value);

    /// Returns the value of a property's winning declaration before any change; empty without one.
    std::string DeclaredValue(std::size_t element, Property property);

    /// Sets an attribute that is no property.
    void SetAttribute(std::size_t element, std::string const& name, std::string const& value);

    /// Removes an attribute.
    void RemoveAttribute(std::size_t element, std::string const& name);

    /// Returns a paint that looks on another form as `paint` does on this one. A gradient that is
    /// measured by the bounds of what it paints, or that moves, is copied with other coordinates.
    /// Warns of a pattern for which that cannot be.
    /// \param bounds  of the form that had the paint, in its element's coordinates
    /// \param toNew  from these to the coordinates of the element that gets it
    std::string KeptPaint(std::size_t element, std::string const& paint,
                          TRect<double> const& bounds, CMatrix3x3 const& toNew);

    /// Sets the transform that the element has by itself.
    void SetTransform(std::size_t element, CMatrix3x3 const& m);

    /// Gives an element another outline, in its own coordinates. A basic shape becomes a path; it
    /// keeps all attributes that do not describe its form, and the style that it had by its type.
    void SetPath(std::size_t element, CPath const& path);

    /// Exchanges the markers at the start and the end of an element whose path will be drawn the
    /// other way, so that they look as before. Returns false, and changes none, where that cannot
    /// be: they follow the path's direction, or the path has several subpaths or is closed.
    /// \param path  the element's path before
    bool TurnMarkers(std::size_t element, CPath const& path);

    /// What a new path is called, and how it looks.
    struct NewPath {
        std::string id;        ///< or one that begins with it, if the document has it already
        std::string className; ///< empty: none
        std::string style;     ///< declarations for its style attribute
    };
    /// Inserts a new path after the element, in the coordinates around it. Its style takes back
    /// what style sheets say about such a path, and the markers that it would inherit.
    void InsertPath(std::size_t element, NewPath const& look, CPath const& path);

    enum class Side { kBefore, kAfter };
    /// A property of a copy.
    struct Setting {
        Property property;
        std::string value;
    };
    /// Inserts a copy of the element beside it, with the changes that it has by now and its style,
    /// but without its content. If the element has an id, the copy gets a free one. One with
    /// another outline has no markers. \param id  what the new id begins with \param path  what
    /// SetPath makes of the copy; if it is empty, the copy keeps the element's outline
    void InsertCopy(std::size_t element, Side side, std::string const& id,
                    std::optional<CPath> const& path, std::vector<Setting> const& settings = {});

    /// Returns an id that the document does not have, and does not give it again: `id` if that is
    /// free, or else one that begins with it.
    std::string FreeId(std::string const& id);

    /// Adds a new path as the last one of the document, in the coordinates of the outermost
    /// element, with a style as of InsertPath.
    void AppendPath(NewPath const& look, CPath const& path);

    /// Applies a transform to all that the document shows.
    /// \param m  in the drawing's coordinates
    void TransformAll(CMatrix3x3 const& m, CMatrix3x3 const& rootTransform);

    /// Removes the element with its content.
    void Remove(std::size_t element);

    /// Returns the document with all changes, in its file's encoding.
    std::string Text() const;

private:
    /// The changes to one start tag.
    struct Tag {
        std::map<std::string, std::optional<std::string>> attributes; ///< empty: removed
        std::string name;                                             ///< empty: the same
    };
    struct Replacement {
        std::size_t begin;
        std::size_t end;
        std::string text;
    };

    static void Sort(std::vector<Replacement>& changes);
    pugi::xml_node NodeAt(std::size_t element) const { return mDocument->ElementAt(element); }
    void AddStyle(std::size_t element, std::string const& property, std::string const& value);
    void KeepStyleOfType(std::size_t element, std::string const& type);
    void KeepStyleOfId(std::size_t element);
    void DropMarkers(std::size_t element);
    /// Returns the transform that the element has by itself. Throws TextError for a mistake in it,
    /// and where it depends on a box or a font.
    CMatrix3x3 OwnTransform(std::size_t element);
    /// Returns the value that an element has of an inherited property; empty without one.
    std::string InheritedValue(pugi::xml_node node, Property property);
    /// Returns the orientation of the marker that a value refers to; empty without a marker.
    std::string MarkerOrient(std::string const& value) const;
    std::string SpaceBefore(std::size_t element) const;
    std::string TagText(std::size_t element, Tag const& tag) const;
    std::string PathText(CPath const& path) const;
    std::string ShieldedStyle(pugi::xml_node beside, std::string style,
                              std::string const& data) const;
    std::string PathElement(pugi::xml_node beside, NewPath const& look, CPath const& path);
    void WriteTag(std::size_t element, Tag const& tag, std::vector<Replacement>& out) const;

    std::shared_ptr<SvgDocument const> mDocument;
    std::optional<int> mDigits;
    Cascade mCascade;
    bool mHasMarkers; ///< false where the text has no such word
    std::map<std::size_t, Tag> mTags;
    std::vector<Replacement> mReplacements;
    std::set<std::string> mIds;                    ///< those given by FreeId
    std::map<std::string, std::string> mGradients; ///< the ids of copies, by gradient and place
};

/// Returns a matrix as the value of a transform: "matrix(a,b,c,d,e,f)".
std::string MatrixText(CMatrix3x3 const& m);

/// Returns the path with coordinates of so many decimals.
CPath Rounded(CPath path, std::optional<int> digits);

} // namespace tool

#endif
