// SPDX-License-Identifier: MIT

// Everything in the library, except CairoSink.h: that needs Cairo's headers, so include it
// yourself.

#ifndef TRAMMEL_TRAMMEL_H
#define TRAMMEL_TRAMMEL_H

#include "AccurateCurve.h"
#include "CBSpline.h"
#include "CBezier.h"
#include "CFPoint.h"
#include "CFPolygonRef.h"
#include "CFRect.h"
#include "CGPathBuilder.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "CPathActions.h"
#include "FPolygon.h"
#include "FillRule.h"
#include "FixedPoint.h"
#include "Handles.h"
#include "Intersections.h"
#include "Log.h"
#include "Moments.h"
#include "OutlineMeasure.h"
#include "PathBuilding.h"
#include "PathCursor.h"
#include "PathMeasure.h"
#include "PathObject.h"
#include "PathSegments.h"
#include "PathStructure.h"
#include "PolygonOperations.h"
#include "PolygonWithHoles.h"
#include "PreparedPolygon.h"
#include "Records.h"
#include "Shapes.h"
#include "SvgPath.h"
#include "TLine.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "Tgcp.h"
#include "UFPoly.h"
#include "UGeometry.h"
#include "UHandle.h"
#include "UHygiene.h"
#include "URotation.h"
#include "UScalar.h"
#include "UTrigonometry.h"
#include "Winding.h"
#include "crc32.h"

#endif
