// The project wrapper, opening and saving model files, sidecar migration,
// atomic saving and the link policy.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/document.h"
#include "io/atomic_file.h"
#include "io/data_integration.h"
#include "io/diagram_writer.h"
#include "io/frame_block.h"
#include "io/link_policy.h"
#include "io/model_file.h"
#include "io/project_file.h"

using namespace modelyne;
namespace fs = std::filesystem;

namespace {

class TempDir {
 public:
  TempDir() {
    path_ = fs::temp_directory_path() /
            ("modelyne_io_test_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(path_);
    fs::create_directories(path_);
  }
  ~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

void writeRaw(const fs::path& p, const std::string& bytes) {
  std::ofstream out(p, std::ios::binary);
  out << bytes;
}

std::string readRaw(const fs::path& p) { return io::readFile(p).value_or("<missing>"); }

std::string oneNodeDiagram(const std::string& id) {
  core::Document doc;
  core::Node n;
  n.id = id;
  n.geom = {1, 2, 3, 4};
  doc.addNode(n);
  return io::serializeDocument(doc);
}

core::Project twoModels() {
  core::Project p;
  p.name = "Drone & Co";
  p.active = 1;
  p.models.push_back({"m1", "Structure", oneNodeDiagram("a"), {}});
  p.models.push_back({"m2", "Empty", "", {}});
  return p;
}

}  // namespace

TEST(ProjectWrapper, WritesSeveralModelsVerbatim) {
  core::Document open;
  const core::Project p = twoModels();
  EXPECT_EQ(io::serializeProject(p, open),
            "<modelyneProject version=\"1\" name=\"Drone &amp; Co\" active=\"1\">\n"
            "<modelyneModel id=\"m1\" name=\"Structure\">\n" +
                p.models[0].diagramXml +
                "\n</modelyneModel>\n"
                "<modelyneModel id=\"m2\" name=\"Empty\">\n"
                "<diagram></diagram>\n"
                "</modelyneModel>\n"
                "</modelyneProject>\n");
  core::Project negative = p;
  negative.active = -3;
  EXPECT_NE(io::serializeProject(negative, open).find("active=\"0\""), std::string::npos);
}

TEST(ProjectWrapper, OneModelIsABareDiagram) {
  core::Document open;
  open.frame().name = "from document";
  core::Project p;
  p.models.push_back({"m1", "Only", oneNodeDiagram("x"), {}});
  EXPECT_EQ(io::serializeProject(p, open), p.models[0].diagramXml);
  p.models[0].diagramXml.clear();
  EXPECT_EQ(io::serializeProject(p, open), io::serializeDocument(open));
  EXPECT_EQ(io::serializeProject(core::Project{}, open), io::serializeDocument(open));
}

TEST(ProjectWrapper, ReadsWhatItWrites) {
  core::Document open;
  core::Project p = twoModels();
  io::insertDiagramFrame(p.models[0].diagramXml, {core::DiagramKind::ibd, "block", "Drone", "N", false});
  io::ReadError err;
  auto back = io::loadProject(io::serializeProject(p, open), &err);
  ASSERT_TRUE(back) << err.what;
  EXPECT_EQ(back->name, "Drone & Co");
  EXPECT_EQ(back->active, 1);
  ASSERT_EQ(back->models.size(), 2u);
  EXPECT_EQ(back->models[0].id, "m1");
  EXPECT_EQ(back->models[0].name, "Structure");
  // The embedded text runs from "<diagram" to the end of "</diagram>".
  const std::string& orig = p.models[0].diagramXml;
  const std::size_t from = orig.find("<diagram");
  EXPECT_EQ(back->models[0].diagramXml, orig.substr(from, orig.rfind("</diagram>") + 10 - from));
  EXPECT_EQ(back->models[0].frame, (core::DiagramFrame{core::DiagramKind::ibd, "block", "Drone", "N", false}));
  EXPECT_EQ(back->models[1].diagramXml, "<diagram></diagram>");
  EXPECT_EQ(back->models[1].frame, core::DiagramFrame{});
}

TEST(ProjectWrapper, RefusesBadActiveAndTruncation) {
  io::ReadError err;
  EXPECT_FALSE(io::loadProject("<modelyneProject active=\"two\">\n</modelyneProject>", &err));
  EXPECT_EQ(err.what, "invalid stoi argument: attribute 'active' of <modelyneProject> at line 1 is \"two\"");
  EXPECT_FALSE(io::loadProject("\n<modelyneProject active=\"99999999999\"></modelyneProject>", &err));
  EXPECT_EQ(err.what, "stoi argument out of range: attribute 'active' of <modelyneProject> at line 2 is \"99999999999\"");
  EXPECT_EQ(err.line, 2u);
  EXPECT_FALSE(io::loadProject("<modelyneProject>\n<modelyneModel id=\"m\">\n<diagram>", &err));
  EXPECT_EQ(err.what, "<modelyneModel> opened at line 2 is not closed: the text ends early");
  EXPECT_FALSE(io::loadProject("<modelyneProject>\n<modelyneModel id=\"m\"></modelyneModel>\n", &err));
  EXPECT_EQ(err.what, "<modelyneProject> opened at line 1 is not closed: the text ends early");
  // A model block without a diagram reads as an empty diagram.
  auto p = io::loadProject("<modelyneProject><modelyneModel id='m' name='x'>junk</modelyneModel></modelyneProject>");
  ASSERT_TRUE(p);
  EXPECT_EQ(p->models.at(0).diagramXml, "");
}

TEST(ModelFile, SavesAndOpensOneAndSeveralModels) {
  TempDir dir;
  const fs::path file = dir.path() / "model.xml";
  core::Document doc;
  core::Node n;
  n.id = "n1";
  n.text = "x";
  doc.addNode(n);
  doc.links().push_back({"l", "project", "other.xml", "Other"});

  core::Project single;
  single.models.push_back({"model1", "Model", "", {}});
  std::string why;
  ASSERT_TRUE(io::saveModelFile(file, single, doc, &why)) << why;
  EXPECT_EQ(readRaw(file), io::serializeDocument(doc));  // no wrapper
  io::OpenedModelFile opened = io::openModelFile(file);
  ASSERT_FALSE(opened.error) << opened.error->what;
  EXPECT_FALSE(opened.wrapped);
  EXPECT_EQ(opened.project.models.size(), 1u);
  EXPECT_EQ(opened.project.name, "model");
  ASSERT_EQ(opened.active.nodes.size(), 1u);
  EXPECT_EQ(opened.active.links, doc.links());
  ASSERT_EQ(opened.log.size(), 1u);
  EXPECT_EQ(opened.log[0].key, "ui.log.di_loaded_fmt");
  EXPECT_EQ(opened.log[0].text, "Loaded 1 data integration link(s).");

  core::Project several = twoModels();
  several.active = 0;
  ASSERT_TRUE(io::saveModelFile(file, several, doc, &why)) << why;
  EXPECT_EQ(several.models[0].diagramXml, io::serializeDocument(doc));  // cache refreshed
  opened = io::openModelFile(file);
  ASSERT_FALSE(opened.error) << opened.error->what;
  EXPECT_TRUE(opened.wrapped);
  EXPECT_EQ(opened.project.name, "Drone & Co");
  ASSERT_EQ(opened.project.models.size(), 2u);
  ASSERT_EQ(opened.active.nodes.size(), 1u);
  EXPECT_EQ(opened.active.nodes[0], doc.nodes()[0]);
}

TEST(ModelFile, ReportsDamageWithTheFileLine) {
  TempDir dir;
  const fs::path file = dir.path() / "bad.xml";
  writeRaw(file,
           "<modelyneProject version=\"1\" name=\"p\" active=\"5\">\n"
           "<modelyneModel id=\"m1\" name=\"Good\">\n<diagram></diagram>\n</modelyneModel>\n"
           "<modelyneModel id=\"m2\" name=\"Broken\">\n<diagram>\n<node id=\"n\"><geom x=\"oops\"/></node>\n"
           "</diagram>\n</modelyneModel>\n</modelyneProject>\n");
  const io::OpenedModelFile r = io::openModelFile(file);
  ASSERT_TRUE(r.error);
  EXPECT_EQ(r.error->what, "model 'Broken': invalid stof argument: attribute 'x' of <geom> in node 'n' at line 2 is \"oops\"");
  EXPECT_EQ(r.error->line, 7u);
  EXPECT_TRUE(r.project.models.empty());

  const io::OpenedModelFile missing = io::openModelFile(dir.path() / "none.xml");
  ASSERT_TRUE(missing.error);
  EXPECT_NE(missing.error->what.find("none.xml"), std::string::npos);
}

TEST(ModelFile, ClampsTheActiveIndex) {
  const io::OpenedModelFile r = io::openModelText(
      "<modelyneProject active=\"7\"><modelyneModel id=\"a\"><diagram></diagram></modelyneModel>"
      "<modelyneModel id=\"b\"><diagram><node id=\"only\"/></diagram></modelyneModel></modelyneProject>");
  ASSERT_FALSE(r.error);
  EXPECT_EQ(r.project.active, 1);
  ASSERT_EQ(r.active.nodes.size(), 1u);
  EXPECT_EQ(r.active.nodes[0].id, "only");
}

TEST(Sidecar, PathReplacesOrAppends) {
  EXPECT_EQ(io::sidecarPathFor("dir/a.XML"), fs::path("dir/a.mllinks.xml"));
  EXPECT_EQ(io::sidecarPathFor("dir/a.xml"), fs::path("dir/a.mllinks.xml"));
  EXPECT_EQ(io::sidecarPathFor("dir/a.model"), fs::path("dir/a.model.mllinks.xml"));
}

TEST(Sidecar, MigratesIntoTheModelFile) {
  TempDir dir;
  const fs::path file = dir.path() / "m.xml";
  const fs::path side = dir.path() / "m.mllinks.xml";
  writeRaw(file, oneNodeDiagram("a"));
  writeRaw(side, "<links>\n<Link id=\"l1\" type=\"project\" path=\"b.xml\" label=\"B\"/>\n</links>\n");
  io::OpenedModelFile r = io::openModelFile(file);
  ASSERT_FALSE(r.error);
  ASSERT_EQ(r.active.links.size(), 1u);
  EXPECT_EQ(r.active.links[0].path, "b.xml");
  ASSERT_EQ(r.log.size(), 2u);
  EXPECT_EQ(r.log[0].key, "ui.log.di_migrated");
  EXPECT_EQ(r.log[0].text, "Migrated data integration sidecar into project file.");
  EXPECT_EQ(r.log[1].text, "Loaded 1 data integration link(s).");
  // The file now holds the block and the sidecar is gone, so links the user
  // deletes later cannot come back from it.
  const std::string text = readRaw(file);
  EXPECT_TRUE(io::hasDataIntegrationBlock(text));
  EXPECT_EQ(io::parseDataIntegration(text), r.active.links);
  EXPECT_FALSE(fs::exists(side));

  // A file that already has a block ignores a sidecar.
  writeRaw(side, "<Link id=\"other\"/>");
  r = io::openModelFile(file);
  ASSERT_EQ(r.active.links.size(), 1u);
  EXPECT_EQ(r.active.links[0].id, "l1");
  EXPECT_TRUE(fs::exists(side));
}

TEST(Sidecar, ReportsWhenTheFileCannotBeRewritten) {
  TempDir dir;
  const fs::path file = dir.path() / "m.xml";
  const fs::path side = dir.path() / "m.mllinks.xml";
  writeRaw(file, "<diagram/>");  // nowhere to put the block
  writeRaw(side, "<Link id=\"l1\" path=\"b.xml\"/>");
  const io::OpenedModelFile r = io::openModelFile(file);
  ASSERT_FALSE(r.error);
  EXPECT_EQ(r.active.links.size(), 1u);
  ASSERT_EQ(r.log.size(), 2u);
  EXPECT_EQ(r.log[0].key, "ui.log.di_save_failed");
  EXPECT_EQ(r.log[0].text, "Failed to update data integration block in project file.");
  EXPECT_TRUE(fs::exists(side));
  EXPECT_EQ(readRaw(file), "<diagram/>");
}

TEST(AtomicFile, FailedSaveKeepsTheOldFile) {
  TempDir dir;
  const fs::path file = dir.path() / "keep.xml";
  ASSERT_TRUE(io::writeFileAtomic(file, "old"));
  ASSERT_TRUE(io::writeFileAtomic(file, "new"));
  EXPECT_EQ(readRaw(file), "new");
  std::string why;
  EXPECT_FALSE(io::writeFileAtomic(dir.path() / "no" / "such" / "dir.xml", "x", &why));
  EXPECT_NE(why.find("dir.xml"), std::string::npos);
  EXPECT_FALSE(io::writeFileAtomic(dir.path(), "x", &why));  // a folder is not replaced
  EXPECT_TRUE(fs::is_directory(dir.path()));
  // No temporary files are left behind.
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir.path())) ++entries;
  EXPECT_EQ(entries, 1u);
}

TEST(LinkPolicy, AllowsModelFilesAndLocalFoldersOnly) {
  TempDir dir;
  fs::create_directories(dir.path() / "sub");
  for (const char* ok : {"C:\\models\\drone.xml", "models/Drone.XML", "/home/u/p.xml", "sub", "sub/"})
    EXPECT_TRUE(io::isLinkTargetAllowed(ok, dir.path())) << ok;
  EXPECT_TRUE(io::isLinkTargetAllowed(dir.path().string()));
  for (const char* blocked :
       {"", "   ", "https://example.com/a.xml", "file:///C:/a.xml", "mailto:a@b.c", "shell:startup",
        "\\\\server\\share\\a.xml", "//server/share/a.xml", "\\\\?\\UNC\\s\\a.xml", "C:\\tools\\run.exe",
        "C:\\Users\\u\\Desktop\\link.lnk", "script.bat", "C:\\a.xml:stream", "C:\\dir\\con.xml", "NUL",
        "missing_folder", "a\nb.xml"})
    EXPECT_FALSE(io::isLinkTargetAllowed(blocked, dir.path())) << blocked;
  EXPECT_STREQ(io::kMsgDiLinkBlocked, "ui.msg.di_link_blocked");
}
