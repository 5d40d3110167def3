#pragma once
// Helpers of the cluster explorer suites: the sample corpus loaded, indexed and modelled in a
// window whose Graphviz folder holds the real sfdp (or a stand-in script).

#include <QString>

#include "window_fixture.h"

namespace sylvora::testing {

// The folder of the real sfdp on PATH; "" when Graphviz is not installed.
QString RealGraphvizFolder();

// Loads and indexes the sample corpus and builds the five interval models (24-hour intervals)
// directly in the window's session, then tells the cluster explorer; the boxes recorded so far
// are dropped. False on any failure.
bool PrepareSampleModels(WindowFixture& f, const QString& graphvizFolder);

// Shows the cluster explorer tab and waits until its builds are over; false after the limit.
bool VisitClusterExplorer(WindowFixture& f, int timeoutMs = 180000);

// Waits until the window's job runner and the cluster explorer are idle.
bool WaitClusterIdle(WindowFixture& f, int timeoutMs = 180000);

// Writes an executable stand-in "sfdp" into `folder`: a shell script with `body`.
bool WriteStandInSfdp(const QString& folder, const QByteArray& body);

}  // namespace sylvora::testing
