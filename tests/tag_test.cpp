#include "zxml/tag.h"

#include <gtest/gtest.h>

#include "tests/support.h"

TEST(TextValue, FitsOneLine) {
  const struct {
    std::string text, stored;
  } cases[] = {
      {"", ""},
      {" ", ""},
      {"  x  ", "x"},
      {"x ", "x"},
      {"a\nb", "a\rb"},
      {"a\rb", "a\rb"},
      {"a\r\nb", "a\r"},
      {"a\nb\r\nc", "a\rb\r"},
      {"\r\n", "\r"},
      {"\n", "\r"},
      {"a \r\n b", "a \r"},
      {"\ta\t", "\ta\t"},
      {"a\n", "a\r"},
      {std::string("a\0b", 3), "a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(MakeTextValue(c.text).text, c.stored);
  }
  EXPECT_EQ(MakeTextValue(static_cast<const char*>(nullptr)).kind, ValueKind::String);
}

TEST(Paths, LeadToTagsAndAttributes) {
  const struct {
    const char* path;
    const char* text;
  } cases[] = {
      {"/x", "*Root=\nx=v\n"},
      {"/a/b/c", "+Root=\n+a=\n*b=\nc=v\n-\n-\n"},
      {"/a//b", "+Root=\n+a=\n*=\nb=v\n-\n-\n"},
      {"//b", "+Root=\n*=\nb=v\n-\n"},
      {"/a/", "+Root=\n*a=\n=v\n-\n"},
      {"Root/x", "*Root=\nx=v\n"},
      {"x", "*Root=\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    TagTree tree = CreateTree(true, "Root");
    SetAttributeByPath(tree, c.path, MakeTextValue("v"));
    EXPECT_EQ(TextOfTree(tree), c.text);
  }
}

TEST(Paths, SecondWriteReplacesValueAndOnlyThenProperty) {
  TagTree tree = CreateTree(true, "Root");
  SetAttributeByPath(tree, "/x", MakeTextValue("1"), "unit", "MB");
  SetAttributeByPath(tree, "/x", MakeTextValue("2"));
  SetAttributeByPath(tree, "/x", MakeIntValue(3), "unit", "GB");
  SetAttributeByPath(tree, "/x", Value(), "more", nullptr);
  SetAttributeByPath(tree, "/x", Value(), "more", "yes");
  EXPECT_EQ(TextOfTree(tree), "*Root=\nx=3\n~unit=GB\n~more=yes\n");
}

TEST(Attributes, ExistingOneKeepsItsProperty) {
  Tag tag;
  SetAttribute(tag, "a", MakeTextValue("1"), "p", "q");
  SetAttribute(tag, "a", MakeTextValue("2"), "p", "r");
  ASSERT_EQ(tag.attributes.size(), 1u);
  EXPECT_EQ(tag.attributes[0]->value.text, "2");
  EXPECT_EQ(FindProperty(tag.attributes[0]->properties, "p")->text, "q");
  EXPECT_EQ(AttributeAt(tag, 1), nullptr);
}

TEST(Attributes, NeverMove) {
  Tag tag;
  std::vector<const Attribute*> places;
  for (int i = 0; i < 100; ++i) places.push_back(SetAttribute(tag, std::to_string(i), MakeIntValue(i)));
  for (std::size_t i = 0; i < places.size(); ++i) EXPECT_EQ(AttributeAt(tag, i), places[i]);
}

// Names that differ only far from their end, or only in length, must not be taken for each other in a long list.
TEST(Children, AreFoundByExactNameInLongLists) {
  Tag tag;
  const std::string tail(40, 'x');
  for (int i = 0; i < 300; ++i) {
    GetOrAddChild(tag, std::to_string(i) + tail);
    GetOrAddChild(tag, "item" + std::to_string(i));
    GetOrAddChild(tag, std::string(static_cast<std::size_t>(i), '\0'));
  }
  ASSERT_EQ(tag.children.size(), 900u);
  for (const auto& child : tag.children) EXPECT_EQ(FindChild(tag, child->name), child.get());
  EXPECT_EQ(FindChild(tag, "item300"), nullptr);
  EXPECT_EQ(ChildAt(tag, 900), nullptr);
}

TEST(Children, NextFreeNumberFillsTheFirstGap) {
  Tag tag;
  EXPECT_EQ(NextFreeNumber(tag, "Disk"), 1);
  GetOrAddChild(tag, "Disk1");
  GetOrAddChild(tag, "Disk3");
  EXPECT_EQ(NextFreeNumber(tag, "Disk"), 2);
  for (const char* name : {"Disk02", "Disk", "Disk2x", "Disk-2", "disk2", "Disk99999999999999999999"})
    GetOrAddChild(tag, name);
  EXPECT_EQ(NextFreeNumber(tag, "Disk"), 2);
  GetOrAddChild(tag, "Disk2");
  EXPECT_EQ(NextFreeNumber(tag, "Disk"), 4);
}

TEST(Copies, AreDeepAndCanReplaceTheirOwnSource) {
  TagTree tree = CreateTree(true, "Root");
  SetAttributeByPath(tree, "/a/b/c", MakeIntValue(-5), "p", "q");
  AddTagProperty(*FindChild(RootOf(tree), "a"), "kind", "x");
  SetTagValue(*FindChild(RootOf(tree), "a"), MakeBoolValue(false));
  TagTree copy = CreateTree(true, "Root");
  CopyTag(RootOf(copy), RootOf(tree));
  const std::string text = TextOfTree(tree);
  DestroyTree(tree);
  EXPECT_EQ(TextOfTree(copy), text);
  EXPECT_EQ(text, "+Root=\n+a=false\n~kind=x\n*b=\nc=-5\n~p=q\n-\n-\n");
  CopyTag(RootOf(copy), *FindChild(RootOf(copy), "a"));
  EXPECT_EQ(TextOfTree(copy), "+a=false\n~kind=x\n*b=\nc=-5\n~p=q\n-\n");
}
