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
  const std::string text = io::serializeProject(p, open);
  auto loaded = io::loadProject(text, &err);
  ASSERT_TRUE(loaded) << err.what;
  EXPECT_TRUE(loaded->wrapped);
  const core::Project& back = loaded->project;
  EXPECT_EQ(back.name, "Drone & Co");
  EXPECT_EQ(back.active, 1);
  ASSERT_EQ(back.models.size(), 2u);
  EXPECT_EQ(back.models[0].id, "m1");
  EXPECT_EQ(back.models[0].name, "Structure");
  // The embedded text runs from "<diagram" to the end of "</diagram>", a
  // view into the file with the line it starts on.
  const std::string& orig = p.models[0].diagramXml;
  const std::size_t from = orig.find("<diagram");
  ASSERT_EQ(loaded->diagrams.size(), 2u);
  EXPECT_EQ(loaded->diagrams[0].text, orig.substr(from, orig.rfind("</diagram>") + 10 - from));
  EXPECT_EQ(loaded->diagrams[0].tagLine, 2u);
  EXPECT_EQ(loaded->diagrams[0].line, 4u);  // after the wrapper line, the model line and the declaration
  EXPECT_EQ(back.models[0].frame, (core::DiagramFrame{core::DiagramKind::ibd, "block", "Drone", "N", false}));
  EXPECT_EQ(loaded->diagrams[1].text, "<diagram></diagram>");
  EXPECT_EQ(loaded->diagrams[1].line, 13u);
  EXPECT_EQ(back.models[1].frame, core::DiagramFrame{});
  EXPECT_TRUE(loaded->warnings.empty());

  // Any other text is a bare diagram: one model, named after its frame.
  auto bare = io::loadProject(orig);
  ASSERT_TRUE(bare);
  EXPECT_FALSE(bare->wrapped);
  ASSERT_EQ(bare->project.models.size(), 1u);
  EXPECT_EQ(bare->project.models[0].id, "model1");
  EXPECT_EQ(bare->project.models[0].name, "N");
  EXPECT_EQ(bare->diagrams[0].text.data(), orig.data());  // not copied
}

TEST(ProjectWrapper, RefusesBadActiveAndTruncation) {
  io::ReadError err;
  EXPECT_FALSE(io::loadProject("<modelyneProject active=\"two\">\n</modelyneProject>", &err, "p.xml"));
  EXPECT_EQ(err, (io::Diagnostic{"invalid stoi argument: attribute 'active' of <modelyneProject> is \"two\"", 1,
                                 "modelyneProject", "p.xml"}));
  EXPECT_FALSE(io::loadProject("\n<modelyneProject active=\"99999999999\"></modelyneProject>", &err));
  EXPECT_EQ(err.what, "stoi argument out of range: attribute 'active' of <modelyneProject> is \"99999999999\"");
  EXPECT_EQ(err.line, 2u);
  EXPECT_FALSE(io::loadProject("<modelyneProject>\n<modelyneModel id=\"m\">\n<diagram>", &err));
  EXPECT_EQ(err, (io::Diagnostic{"<modelyneModel> is not closed: the text ends early", 2, "modelyneModel", ""}));
  EXPECT_FALSE(io::loadProject("<modelyneProject>\n<modelyneModel id=\"m\"></modelyneModel>\n", &err));
  EXPECT_EQ(err, (io::Diagnostic{"<modelyneProject> is not closed: the text ends early", 1, "modelyneProject", ""}));
  // A model block without a diagram reads as an empty diagram.
  auto p = io::loadProject("<modelyneProject><modelyneModel id='m' name='x'>junk</modelyneModel></modelyneProject>");
  ASSERT_TRUE(p);
  EXPECT_EQ(p->diagrams.at(0).text, "");
}

// Repeated model ids and an active index that names no model are read, with
// a warning at the line that says so.
TEST(ProjectWrapper, WarnsAboutRepeatedIdsAndAnActiveIndexOutOfRange) {
  const std::string text =
      "<modelyneProject active=\"-2\">\n"
      "<modelyneModel id=\"m\" name=\"A\">\n<diagram></diagram>\n</modelyneModel>\n"
      "<modelyneModel id=\"n\" name=\"B\">\n<diagram></diagram>\n</modelyneModel>\n"
      "<modelyneModel id=\"m\" name=\"C\">\n<diagram></diagram>\n</modelyneModel>\n"
      "</modelyneProject>\n";
  auto p = io::loadProject(text, nullptr, "p.xml");
  ASSERT_TRUE(p);
  EXPECT_EQ(p->project.active, -2);
  EXPECT_EQ(io::activeIndex(p->project), 0u);
  EXPECT_EQ(p->warnings,
            (std::vector<io::Diagnostic>{
                {"attribute 'active' of <modelyneProject> is -2, but the project has 3 models; the first model is active instead",
                 1, "modelyneProject", "p.xml"},
                {"model id 'm' is already used by an earlier model", 8, "modelyneModel", "p.xml"}}));

  // Opening by id takes the first of equal ids and says so.
  io::OpenOptions o;
  o.fileName = "p.xml";
  o.modelId = "m";
  const io::OpenedModelFile opened = io::openModelText(text, o);
  ASSERT_FALSE(opened.error);
  EXPECT_EQ(opened.selected, 0u);
  ASSERT_EQ(opened.warnings.size(), 3u);
  EXPECT_EQ(opened.warnings[2], (io::Diagnostic{"2 models have the id 'm'; the first, \"A\", is used", 2, "modelyneModel", "p.xml"}));
  o.modelId = "zz";
  EXPECT_EQ(io::openModelText(text, o).error,
            (io::Diagnostic{"no model 'zz' (models: m, n, m)", 0, "modelyneModel", "p.xml"}));
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
  ASSERT_EQ(opened.documents.at(opened.selected)->nodes().size(), 1u);
  EXPECT_EQ(opened.documents[opened.selected]->links(), doc.links());
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
  EXPECT_EQ(opened.project.models[0].diagramXml, "");  // the documents hold the diagrams
  ASSERT_EQ(opened.documents[0]->nodes().size(), 1u);
  EXPECT_EQ(opened.documents[0]->nodes()[0], doc.nodes()[0]);
  EXPECT_TRUE(opened.documents[1]->nodes().empty());
  EXPECT_EQ(opened.project.models[1].frame, core::DiagramFrame{});
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
  EXPECT_EQ(*r.error, (io::Diagnostic{"invalid stof argument: attribute 'x' of <geom> in node 'n' is \"oops\"", 7, "geom",
                                      file.string()}));
  EXPECT_TRUE(r.project.models.empty());
  EXPECT_TRUE(r.documents.empty());

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
  EXPECT_EQ(r.selected, 1u);
  ASSERT_EQ(r.documents[1]->nodes().size(), 1u);
  EXPECT_EQ(r.documents[1]->nodes()[0].id, "only");
  ASSERT_EQ(r.warnings.size(), 1u);
  EXPECT_EQ(r.warnings[0].line, 1u);
}

// Only the selected model is read when asked so: a damaged other model does
// not stop a command that works on one.
TEST(ModelFile, ReadsOneModelWhenAsked) {
  const std::string text =
      "<modelyneProject active=\"0\">\n<modelyneModel id=\"a\">\n<diagram><node id=\"x\"/></diagram>\n</modelyneModel>\n"
      "<modelyneModel id=\"b\">\n<diagram><node id=\"y\"><geom x=\"?\"/></node></diagram>\n</modelyneModel>\n"
      "</modelyneProject>\n";
  io::OpenOptions one;
  one.allModels = false;
  const io::OpenedModelFile r = io::openModelText(text, one);
  ASSERT_FALSE(r.error);
  ASSERT_EQ(r.documents.size(), 2u);
  EXPECT_EQ(r.documents[0]->nodes().size(), 1u);
  EXPECT_EQ(r.documents[1], nullptr);
  const io::OpenedModelFile all = io::openModelText(text);
  ASSERT_TRUE(all.error);
  EXPECT_EQ(all.error->line, 6u);
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
  io::OpenOptions migrate;
  migrate.migrateSidecar = true;
  io::OpenedModelFile r = io::openModelFile(file, migrate);
  ASSERT_FALSE(r.error);
  const auto links = [](const io::OpenedModelFile& o) { return o.documents[o.selected]->links(); };
  ASSERT_EQ(links(r).size(), 1u);
  EXPECT_EQ(links(r)[0].path, "b.xml");
  ASSERT_EQ(r.log.size(), 2u);
  EXPECT_EQ(r.log[0].key, "ui.log.di_migrated");
  EXPECT_EQ(r.log[0].text, "Migrated data integration sidecar into project file.");
  EXPECT_EQ(r.log[1].text, "Loaded 1 data integration link(s).");
  // The file now holds the block and the sidecar is gone, so links the user
  // deletes later cannot come back from it.
  const std::string text = readRaw(file);
  EXPECT_TRUE(io::hasDataIntegrationBlock(text));
  EXPECT_EQ(io::parseDataIntegration(text), links(r));
  EXPECT_FALSE(fs::exists(side));

  // A file that already has a block ignores a sidecar.
  writeRaw(side, "<Link id=\"other\"/>");
  r = io::openModelFile(file, migrate);
  ASSERT_EQ(links(r).size(), 1u);
  EXPECT_EQ(links(r)[0].id, "l1");
  EXPECT_TRUE(fs::exists(side));
  // Without migration the sidecar is not read at all.
  fs::remove(file);
  writeRaw(file, oneNodeDiagram("a"));
  r = io::openModelFile(file);
  EXPECT_TRUE(links(r).empty());
  EXPECT_EQ(readRaw(file), oneNodeDiagram("a"));
}

TEST(Sidecar, ReportsWhenTheFileCannotBeRewritten) {
  TempDir dir;
  const fs::path file = dir.path() / "m.xml";
  const fs::path side = dir.path() / "m.mllinks.xml";
  writeRaw(file, "<diagram/>");  // nowhere to put the block
  writeRaw(side, "<Link id=\"l1\" path=\"b.xml\"/>");
  io::OpenOptions migrate;
  migrate.migrateSidecar = true;
  const io::OpenedModelFile r = io::openModelFile(file, migrate);
  ASSERT_FALSE(r.error);
  EXPECT_EQ(r.documents[r.selected]->links().size(), 1u);
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

// Replacing a file keeps what it was: its permissions, a symbolic link that
// points at it; a temporary file that a killed save left beside the same
// target is removed, anything else is left alone.
TEST(AtomicFile, ReplacingKeepsPermissionsAndLinksAndCleansUp) {
  TempDir dir;
  const fs::path file = dir.path() / "m.xml";
  ASSERT_TRUE(io::writeFileAtomic(file, "old"));
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::replace);
  ASSERT_TRUE(io::writeFileAtomic(file, "new"));
  EXPECT_EQ(fs::status(file).permissions() & fs::perms::mask, fs::perms::owner_read | fs::perms::owner_write);

  const fs::path link = dir.path() / "link.xml";
  fs::create_symlink("m.xml", link);
  ASSERT_TRUE(io::writeFileAtomic(link, "through"));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(readRaw(file), "through");
  EXPECT_EQ(fs::status(file).permissions() & fs::perms::mask, fs::perms::owner_read | fs::perms::owner_write);
  const fs::path dangling = dir.path() / "dangling.xml";
  fs::create_symlink("made.xml", dangling);
  ASSERT_TRUE(io::writeFileAtomic(dangling, "made"));
  EXPECT_TRUE(fs::is_symlink(dangling));
  EXPECT_EQ(readRaw(dir.path() / "made.xml"), "made");

  // Process 999999999 does not run; process 1 always does.
  const fs::path stale = dir.path() / "m.xml.tmp-999999999-3";
  const fs::path running = dir.path() / "m.xml.tmp-1-0";
  const fs::path notOurs = dir.path() / "m.xml.tmp-draft";
  const fs::path otherTarget = dir.path() / "n.xml.tmp-999999999-0";
  for (const fs::path& p : {stale, running, notOurs, otherTarget}) writeRaw(p, "half");
  ASSERT_TRUE(io::writeFileAtomic(file, "again"));
  EXPECT_FALSE(fs::exists(stale));
  EXPECT_TRUE(fs::exists(running));
  EXPECT_TRUE(fs::exists(notOurs));
  EXPECT_TRUE(fs::exists(otherTarget));
  EXPECT_EQ(readRaw(file), "again");
}

TEST(AtomicFile, ReadsWithinTheSizeLimit) {
  TempDir dir;
  const fs::path file = dir.path() / "big.xml";
  writeRaw(file, std::string(100, 'x'));
  std::string why;
  bool tooLarge = true;
  EXPECT_EQ(io::readFile(file, &why, 100, &tooLarge), std::string(100, 'x'));
  EXPECT_FALSE(tooLarge);
  EXPECT_FALSE(io::readFile(file, &why, 99, &tooLarge));
  EXPECT_TRUE(tooLarge);
  EXPECT_EQ(why, "Cannot read " + file.string() + ": it is larger than the input size limit of 99 bytes");
  // A device without end stops at the limit.
  EXPECT_FALSE(io::readFile("/dev/zero", &why, 1 << 20, &tooLarge));
  EXPECT_TRUE(tooLarge);
  EXPECT_EQ(why, "Cannot read /dev/zero: it is larger than the input size limit of 1 MiB");
  EXPECT_EQ(io::sizeText(io::kDefaultMaxInputBytes), "1 GiB");
  EXPECT_EQ(io::sizeText(3 << 10), "3 KiB");
  EXPECT_EQ(io::sizeText(1), "1 byte");
  EXPECT_EQ(io::sizeText(1500), "1500 bytes");
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
