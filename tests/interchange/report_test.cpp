// The report's printed forms: summary line, loss lines, error lines, JSON.
#include <gtest/gtest.h>

#include "interchange/report.h"

using namespace modelyne::interchange;

TEST(InterchangeReport, PrintsSummaryLossesErrorsAndJson) {
  InterchangeReport r;
  r.file = "v.sysml";
  r.account(Disposition::node);
  r.account(Disposition::node);
  r.account(Disposition::edge);
  r.account(Disposition::property);
  r.lose({7, "metadata", "Safety", "metadata not drawn"});
  r.lose({9, "connect", "", "names of the ends not kept", true});
  r.errors.push_back({3, 14, "Expected ';' after 'b' to end the statement."});
  r.models.push_back({"m1", modelyne::core::DiagramKind::bdd, 2, 1});

  EXPECT_EQ(r.total(), 5u);
  EXPECT_EQ(summaryLine(r), "Read 5 declarations: 2 as nodes, 1 as edges, 1 as properties, 1 not drawn.");
  EXPECT_EQ(lossLines(r),
            "v.sysml:7: metadata Safety: metadata not drawn\n"
            "v.sysml:9: connect: names of the ends not kept\n");
  EXPECT_EQ(errorLines(r), "v.sysml:3:14: Expected ';' after 'b' to end the statement.\n");
  EXPECT_EQ(reportJson(r),
            "{\"declarations\": 5, \"nodes\": 2, \"edges\": 1, \"properties\": 1, \"lost\": ["
            "{\"line\": 7, \"kind\": \"metadata\", \"name\": \"Safety\", \"reason\": \"metadata not drawn\"}, "
            "{\"line\": 9, \"kind\": \"connect\", \"name\": \"\", \"reason\": \"names of the ends not kept\"}], "
            "\"errors\": [{\"line\": 3, \"column\": 14, \"message\": \"Expected ';' after 'b' to end the statement.\"}], "
            "\"models\": [{\"id\": \"m1\", \"kind\": \"bdd\", \"nodes\": 2, \"edges\": 1}]}\n");
  EXPECT_EQ(jsonQuoted("a\"\\\n\x01\xFF"), "\"a\\\"\\\\\\n\\u0001\xEF\xBF\xBD\"");
}
