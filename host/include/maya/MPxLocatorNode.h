#pragma once

#include <maya/M3dView.h>
#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MPxNode.h>

/// Base class of the locators that plug-ins bring: DAG shapes that draw themselves in the viewport.
class OPENMAYAUI_EXPORT MPxLocatorNode : public MPxNode {
public:
    MPxLocatorNode();
    virtual ~MPxLocatorNode();
    virtual MPxNode::Type type() const override;
    /// Draws in the node's own space: the viewport has loaded its world matrix. Between the view's beginGL and endGL.
    virtual void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status);
    virtual bool isBounded() const;
    virtual MBoundingBox boundingBox() const;
    unsigned int color(M3dView::DisplayStatus displayStatus);
    MColor colorRGB(M3dView::DisplayStatus displayStatus);
    /// Whether a view that is to show no locators leaves this one out, too; true unless overridden.
    virtual bool excludeAsLocator() const;
    virtual bool isTransparent() const;
    virtual bool drawLast() const;
    static const char* className();

    /// Attributes of every locator.
    static MObject worldMatrix;
    static MObject visibility;
    static MObject localPosition;
    static MObject localScale;
};
