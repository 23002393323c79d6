#include "sample_app/MetadataFile.h"

#include <json/json.h>

using graphql::GraphQLApi;

namespace sample_app {

namespace {

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// Without a picture the member is null, and another member has the reason.
void addThumbnail(const Thumbnail& thumbnail, const std::string& file, Json::Value* document) {
  if (thumbnail.isThere()) {
    (*document)["thumbnail"] = nameOf(file);
  } else {
    (*document)["thumbnail"] = Json::Value();
    (*document)["thumbnailProblem"] = thumbnail.problem;
  }
}

Json::Value documentOf(const SampleItem& item, const GraphQLApi::SampleMetadata& metadata) {
  Json::Value document;
  document["bookId"] = item.bookId;
  document["sampleFilePath"] = item.sampleFilePath;
  document["apiUrl"] = metadata.apiUrl;
  document["name"] = metadata.name;
  document["author"] = metadata.author;
  document["price"] = metadata.price;
  document["oldPrice"] = metadata.oldPrice;
  document["thumbnailUrl"] = metadata.thumbnailUrl;
  return document;
}

std::string textOf(const Json::Value& document) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  return Json::writeString(builder, document) + "\n";
}

}  // namespace

base::FileFailure placeMetadata(const std::string& path, const SampleItem& item,
                                const GraphQLApi::SampleMetadata& metadata,
                                const Thumbnail& thumbnail) {
  const std::string picture = path + ".thumbnail." + thumbnail.extension;
  Json::Value document = documentOf(item, metadata);
  addThumbnail(thumbnail, picture, &document);
  base::FileFailure failure;
  if (thumbnail.isThere()) {
    failure = base::placeWholeFile(picture, thumbnail.bytes, base::Placing::Replace);
  }
  return failure ? failure
                 : base::placeWholeFile(path + ".json", textOf(document), base::Placing::Replace);
}

}  // namespace sample_app
