// XtReparentWidget: moving a widget subtree to a new composite parent.
// Xt only ever attaches a widget at creation, so this file replays the
// parts of creation and destruction that tie a child to its parent
// (delete_child / insert_child, the constraint record) and moves the window.
#include "widgets/reparent.h"

#include "kernel/omdiag.h"

#include <Xm/Form.h>

#include <X11/IntrinsicP.h>
#include <X11/StringDefs.h>

#include <cstring>
#include <unordered_map>

namespace
{

const char kFunction[] = "XtReparentWidget";

bool refuse(const char *why)
{
    omDebugWarning(OmDiag::BadArgument, kFunction, why);
    return false;
}

bool isInSubtree(Widget root, Widget candidate)
{
    for (Widget p = candidate; p; p = XtParent(p))
        if (p == root)
            return true;
    return false;
}

bool isChildOf(Widget parent, Widget w)
{
    auto *cw = reinterpret_cast<CompositeWidget>(parent);
    for (Cardinal i = 0; i < cw->composite.num_children; ++i)
        if (cw->composite.children[i] == w)
            return true;
    return false;
}

// Returns the reason for refusing, or nullptr when the move may go ahead.
const char *checkMove(Widget w, Widget newParent, Widget inner)
{
    if (!w || !newParent)
        return "null widget";
    if (w->core.being_destroyed || newParent->core.being_destroyed)
        return "widget is being destroyed";
    if (XtIsShell(w))
        return "a shell cannot be moved";
    if (!XtIsWidget(w))
        return "only windowed widgets can be moved";
    if (!XtIsComposite(newParent) || XtIsShell(newParent))
        return "new parent is not a composite widget";
    if (!XtIsComposite(XtParent(w)) || !isChildOf(XtParent(w), w))
        return "widget is not a normal child of its parent";
    if (isInSubtree(w, newParent))
        return "new parent lies inside the widget's own subtree";
    if (XtScreen(w) != XtScreen(newParent))
        return "new parent is on another screen";
    if (w->core.depth != newParent->core.depth || w->core.colormap != newParent->core.colormap)
        return "new parent has another depth or colormap";
    if (inner && !isInSubtree(w, inner))
        return "inner widget is not inside the moved widget";
    auto *cls = reinterpret_cast<CompositeWidgetClass>(XtClass(newParent));
    if (!cls->composite_class.insert_child)
        return "new parent takes no children";
    return nullptr;
}

ConstraintWidgetClass constraintClassOf(Widget parent)
{
    return XtIsConstraint(parent) ? reinterpret_cast<ConstraintWidgetClass>(XtClass(parent))
                                  : nullptr;
}

// Xt allocates a child's constraint record in one block with the widget
// and never frees it on its own, so a record this file had to allocate
// (the new parent's is larger than the room behind the widget) is tracked
// here and freed once Xt is done with the dead widget.  Like all Xt state
// it is touched on the user-interface thread only.
struct OwnedConstraints {
    XtPointer block;
    Cardinal size;
};
std::unordered_map<Widget, OwnedConstraints> ownedConstraints;

void freeBlock(XtPointer block, XtIntervalId *)
{
    XtFree(static_cast<char *>(block));
}

// Runs before Xt calls the constraint destroy procedures, which still read
// the record; the block goes once the destruction has finished.
void releaseOnDestroy(Widget w, XtPointer, XtPointer)
{
    auto it = ownedConstraints.find(w);
    if (it == ownedConstraints.end())
        return;
    XtAppAddTimeOut(XtWidgetToApplicationContext(w), 0, freeBlock, it->second.block);
    ownedConstraints.erase(it);
}

// The old parent's constraint destroy procedures, subclass first, as Xt
// runs them when a child dies; they drop references other children's
// constraints hold to `w` (form attachments, for instance).  Returns how
// many bytes the record's storage can hold for the next parent.
Cardinal dropConstraints(Widget w, Widget oldParent)
{
    ConstraintWidgetClass cls = constraintClassOf(oldParent);
    if (cls) {
        for (auto c = cls;; c = reinterpret_cast<ConstraintWidgetClass>(c->core_class.superclass)) {
            if (c->constraint_class.destroy)
                c->constraint_class.destroy(w);
            if (reinterpret_cast<WidgetClass>(c) == constraintWidgetClass)
                break;
        }
    }
    if (auto it = ownedConstraints.find(w); it != ownedConstraints.end())
        return it->second.size;
    const bool inline_ =
        w->core.constraints == reinterpret_cast<char *>(w) + XtClass(w)->core_class.widget_size;
    return cls && inline_ ? cls->constraint_class.constraint_size : 0;
}

void initializeConstraints(ConstraintWidgetClass c, Widget request, Widget w)
{
    if (reinterpret_cast<WidgetClass>(c) != constraintWidgetClass)
        initializeConstraints(reinterpret_cast<ConstraintWidgetClass>(c->core_class.superclass),
                              request, w);
    if (c->constraint_class.initialize) {
        Cardinal none = 0;
        c->constraint_class.initialize(request, w, nullptr, &none);
    }
}

// A fresh constraint record of the new parent's class, filled from the
// resource database and the class defaults, then run through the constraint
// initialize procedures superclass first, as at creation.  `w`'s parent must
// already be the new one.
void buildConstraints(Widget w, Cardinal room)
{
    ConstraintWidgetClass cls = constraintClassOf(XtParent(w));
    const Cardinal size = cls ? cls->constraint_class.constraint_size : 0;
    if (size == 0) {
        // Storage stays where it is (and owned storage stays tracked).
        w->core.constraints = room ? w->core.constraints : nullptr;
        return;
    }
    if (size <= room) {
        std::memset(w->core.constraints, 0, size);
    } else {
        auto it = ownedConstraints.find(w);
        if (it != ownedConstraints.end())
            XtFree(static_cast<char *>(it->second.block));
        else
            XtAddCallback(w, XtNdestroyCallback, releaseOnDestroy, nullptr);
        w->core.constraints = XtCalloc(1, size);
        ownedConstraints[w] = {w->core.constraints, size};
    }

    XtResourceList list = nullptr;
    Cardinal count = 0;
    XtGetConstraintResourceList(XtClass(XtParent(w)), &list, &count);
    if (count)
        XtGetSubresources(w, w->core.constraints, XtName(w), XtClass(w)->core_class.class_name,
                          list, count, nullptr, 0);
    XtFree(reinterpret_cast<char *>(list));

    // The initialize procedures compare `request` with `w`, so it is a
    // byte copy of the widget with its own copy of the constraints.
    const Cardinal widgetSize = XtClass(w)->core_class.widget_size;
    auto request = reinterpret_cast<Widget>(XtMalloc(widgetSize));
    std::memcpy(request, w, widgetSize);
    request->core.constraints = XtMalloc(size);
    std::memcpy(request->core.constraints, w->core.constraints, size);
    initializeConstraints(cls, request, w);
    XtFree(static_cast<char *>(request->core.constraints));
    XtFree(reinterpret_cast<char *>(request));
}

// A form's children may be attached to the widget that leaves it; the form
// keeps those references when the widget goes elsewhere and would go on
// laying out against it (and read freed memory once it dies), so the old
// form's sides that name `w` are detached.
void detachFormSiblings(Widget oldParent, Widget w)
{
    if (!XmIsForm(oldParent))
        return;
    static const struct {
        const char *attachment;
        const char *widget;
    } sides[] = {{XmNleftAttachment, XmNleftWidget},
                 {XmNrightAttachment, XmNrightWidget},
                 {XmNtopAttachment, XmNtopWidget},
                 {XmNbottomAttachment, XmNbottomWidget}};
    auto *form = reinterpret_cast<CompositeWidget>(oldParent);
    for (Cardinal i = 0; i < form->composite.num_children; ++i) {
        Widget sibling = form->composite.children[i];
        for (const auto &side : sides) {
            Widget target = nullptr;
            XtVaGetValues(sibling, side.widget, &target, nullptr);
            if (target == w)
                XtVaSetValues(sibling, side.attachment, XmATTACH_NONE, side.widget, nullptr,
                              nullptr);
        }
    }
}

// Gives the new parent a window when `w` has one.  The highest unrealised
// ancestor below a realised one is realised (which realises the new parent
// with it); when no ancestor has a window, `w` gives up its windows instead
// and gets them back when the new tree is realised.
void matchRealization(Widget w, Widget newParent)
{
    if (!XtIsRealized(w) || XtIsRealized(newParent))
        return;
    Widget top = newParent;
    while (XtParent(top) && !XtIsRealized(XtParent(top)))
        top = XtParent(top);
    if (XtParent(top))
        XtRealizeWidget(top);
    else
        XtUnrealizeWidget(w);
}

void moveTo(Widget w, Widget newParent, Position x, Position y, Dimension width, Dimension height)
{
    Widget oldParent = XtParent(w);
    const bool wasManaged = XtIsManaged(w);
    // Unmanaging first lets the old parent lay out again and lets Motif move
    // the keyboard focus off the subtree while it still sits in the old tree.
    if (wasManaged)
        XtUnmanageChild(w);
    matchRealization(w, newParent);

    auto *oldClass = reinterpret_cast<CompositeWidgetClass>(XtClass(oldParent));
    if (oldClass->composite_class.delete_child)
        oldClass->composite_class.delete_child(w);
    const Cardinal room = dropConstraints(w, oldParent);
    detachFormSiblings(oldParent, w);

    w->core.parent = newParent;
    // Constraint initialize procedures (a form's among them) take the
    // child's position as its starting offset, so it is set before them.
    w->core.x = x;
    w->core.y = y;
    buildConstraints(w, room);
    auto *newClass = reinterpret_cast<CompositeWidgetClass>(XtClass(newParent));
    newClass->composite_class.insert_child(w);

    // The server keeps the window's map state across the reparent.
    if (XtIsRealized(w))
        XReparentWindow(XtDisplay(w), XtWindow(w), XtWindow(newParent), x, y);
    if ((width && width != w->core.width) || (height && height != w->core.height))
        XtResizeWidget(w, width ? width : w->core.width, height ? height : w->core.height,
                       w->core.border_width);
    if (wasManaged)
        XtManageChild(w);
}

} // namespace

extern "C" Boolean XtReparentWidget(Widget w, Widget newParent, Position x, Position y,
                                    Dimension width, Dimension height, Widget inner)
{
    if (const char *why = checkMove(w, newParent, inner))
        return refuse(why);
    if (XtParent(w) == newParent) {
        XtConfigureWidget(w, x, y, width ? width : w->core.width, height ? height : w->core.height,
                          w->core.border_width);
        return True;
    }
    moveTo(w, newParent, x, y, width, height);
    return True;
}
