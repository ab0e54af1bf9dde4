#include "common/ParseXML.h"

#include "common/CoreOS/PtrArray.h"
#include "common/XmlParser.h"
#include "support/Recorder.h"

// The walk and the two mechanisms that every XML parser stands on, on a parser made for the purpose:
// a Tree of Node elements with a "name", of which one named "bad" does not parse.

namespace {

class CTree : public XMLBase {
  public:
    struct STree : vyr::SHandlers {
        CCPtrArray children{vyr::RemoveChild<CTree>, nullptr};
        std::string name;
    };

    bool Create() override
    {
        return vyr::CreateXmlParser(m, "[CTree::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
    }

    void Destroy() override { vyr::DestroyXmlParser(*this, m, "[CTree::Destroy]", VYR_HERE); }

    bool t_CreateCallback()
    {
        static constexpr vyr::SElementHandler<CTree> k_handlers[] = {{"Node", sm_CbNode}, {"node", sm_CbNode}};
        return vyr::AddHandlers(m->handlers, k_handlers);
    }

    static void sm_CbNode(CTree* parent, void* cur)
    {
        static constexpr vyr::SChildSteps k_steps = {"node->Create()", "node->Parse(root->t_xml.Doc(), cur)"};
        auto node = vyr::BuildXmlChild<CTree>(parent->t_xml.Doc(), cur, k_steps, VYR_HERE, [parent](CTree& child) {
            child.m->name = parent->m->name + "/";
            return parent->m->name != "/unready";
        });
        if (node) {
            parent->m->children.Add(node.release());
        }
    }

    bool m_ProcessParse(void* root) override
    {
        const vyr::CNodeText name = vyr::CNodeText::Attribute(root, "name");
        if (name.Found() && std::string(name.Text()) == "bad") {
            return false;
        }
        m->name += name.Found() ? name.Text() : "";
        vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, "[CTree::m_ProcessParse] Name[%s]",
                              VYR_HERE);
        return true;
    }

    std::string Show() const
    {
        std::string text = m->name;
        for (int i = 0; i < m->children.Size(); ++i) {
            text += "(" + static_cast<CTree*>(m->children.Data(i))->Show() + ")";
        }
        return text;
    }

    bool Holds() const { return t_xml.FlagCreate(); }

    STree* m = nullptr;
};

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

TEST_F(ParseXMLTest, DocumentIsKeptAfterSuccessOnly)
{
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
