#include "common/ParseXML.h"

#include "common/XmlParser.h"
#include "support/Recorder.h"

// The walk and the two mechanisms that every XML parser stands on, on a parser made for the purpose:
// a Tree of Node elements with a "name", of which one named "bad" does not parse.

namespace {

class CTree : public CXmlElement {
  public:
    struct STree {
        TOwnedArray<CTree> children;
        std::string name;
    };
    struct SState;

    STree& Values() const;

    std::string Show() const
    {
        std::string text = Values().name;
        for (const CTree* child : Values().children) {
            text += "(" + child->Show() + ")";
        }
        return text;
    }

    bool Holds() const { return t_xml.FlagCreate(); }
    void Keep() { t_keepsDocument = true; }

  private:
    vyr::SXmlKind t_Kind() const override;
};

struct CTree::SState : vyr::TXmlState<STree> {
    static void sm_CbNode(SState* m, void* cur)
    {
        vyr::AddChild(m->values.children, *m, cur, {"node->Create()", "node->Parse(root->t_xml.Doc(), cur)"},
                      [m](CTree& child) {
                          child.Values().name = m->values.name + "/";
                          return m->values.name != "/unready";
                      });
    }

    bool m_ProcessParse(void* root) override
    {
        static constexpr vyr::SElementHandler<SState> k_handlers[] = {{"Node", sm_CbNode}, {"node", sm_CbNode}};
        const vyr::CNodeText name = vyr::CNodeText::Attribute(root, "name");
        if (name.Found() && std::string(name.Text()) == "bad") {
            return false;
        }
        values.name += name.Found() ? name.Text() : "";
        vyr::DispatchChildren(this, k_handlers, root, "[CTree::m_ProcessParse] Name[%s]");
        return true;
    }
};

CTree::STree& CTree::Values() const
{
    return t_State<SState>()->values;
}

vyr::SXmlKind CTree::t_Kind() const
{
    return vyr::XmlKind<SState>("CTree");
}

class ParseXMLTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        ASSERT_TRUE(m_tree.Create());
    }

    void TearDown() override
    {
        m_tree.Destroy();
        CRecorder::TearDown();
    }

    bool Parse(const std::string& text) { return m_tree.Parse(text.data(), static_cast<unsigned int>(text.size())); }

    CTree m_tree;
};

TEST_F(ParseXMLTest, ChildrenAreDispatchedByNameAndBuiltOnTheDocument)
{
    ASSERT_TRUE(
        Parse("<x:t xmlns:x='u' name='r'>\n <x:Node name='a'><Node name='b'/></x:Node><NODE/><!--Node--><?Node?>"
              "<Node name='bad'/><node/>t</x:t>"));
    EXPECT_EQ(m_tree.Show(), "r(r/a(r/a/b))(r/)");
    EXPECT_EQ(Logged("[CTree::m_ProcessParse] Name[Node]"), 3);
    EXPECT_EQ(Logged("Name["), 4);
    // The failed child says where it was built, and by which step.
    EXPECT_EQ(Logged("_CHECK FAIL: tests/common/ParseXMLTest:") + Logged("_CHECK FAIL: src/"), 2);
    EXPECT_EQ(Logged("sm_CbNode("), 1);
    EXPECT_EQ(Logged(", node->Parse(root->t_xml.Doc(), cur)"), 1);
}

TEST_F(ParseXMLTest, DocumentIsKeptOnRequestAndAfterSuccessOnly)
{
    EXPECT_TRUE(Parse("<t/>"));
    EXPECT_FALSE(m_tree.Holds());
    m_tree.Keep();
    EXPECT_TRUE(Parse("<t/>"));
    EXPECT_TRUE(m_tree.Holds());
    EXPECT_TRUE(Parse("<t/>"));
    EXPECT_FALSE(Parse("<t name='bad'/>"));
    EXPECT_FALSE(m_tree.Holds());
    EXPECT_EQ(Logged(", m_ProcessParse(root)"), 1);
    EXPECT_FALSE(Parse("<t>"));
    EXPECT_EQ(Logged(", t_xml.Create(buffer, length, compressed)"), 1);
    EXPECT_FALSE(m_tree.Parse("<t/>", 0xFFFFFFFF));
    const std::string gzip = Gzip("<t name='z'/>");
    EXPECT_FALSE(Parse(gzip));
    EXPECT_TRUE(m_tree.XMLBase::Parse(gzip.data(), static_cast<unsigned int>(gzip.size()), true));
    EXPECT_EQ(m_tree.Show(), "z");

    EXPECT_FALSE(m_tree.XMLBase::Parse(nullptr, 5u, false));
    ASSERT_EQ(s_assertions.size(), 1u);
    EXPECT_EQ(s_assertions[0].file, "src/common/ParseXML");
    EXPECT_EQ(s_assertions[0].line, 20u);
    EXPECT_EQ(TakeAssertions(), "buffer");
    EXPECT_FALSE(m_tree.Create());
    EXPECT_FALSE(m_tree.XMLBase::Parse(static_cast<void*>(nullptr), static_cast<void*>(nullptr)));
    EXPECT_EQ(Logged(", t_xml.Create(doc)"), 1);
    EXPECT_EQ(TakeAssertions(), "!m; docPtr");
}

}  // namespace
