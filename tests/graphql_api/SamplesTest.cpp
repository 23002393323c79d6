// Sample metadata and prices.

#include "tests/graphql_api/GermanLocale.h"
#include "tests/graphql_api/OperationTest.h"
#include "tests/support/NewProcess.h"

using graphql::GraphQLApi;
using support::passesInNewProcess;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using SampleMetadata = GraphQLApi::SampleMetadata;

class SamplesTest : public OperationTest {
 protected:
  static std::string answerWith(const std::string& product) {
    return R"({"data":{"productDetails":{"product":)" + product + "}}}";
  }

  SampleMetadata metadataOf(const std::string& product) {
    platform().http.answer(200, answerWith(product));
    return api.sampleMetadata(store, "MTIz");
  }

  SampleMetadata pricesOf(const std::string& product) {
    platform().http.answer(200, answerWith(product));
    return api.samplePriceRefresh(store, "MTIz");
  }

  static void expectNothingRead(const SampleMetadata& sample) {
    EXPECT_EQ(sample.apiUrl + sample.uid + sample.name + sample.author + sample.price +
                  sample.oldPrice + sample.thumbnailUrl,
              "");
  }

  // The prices of a range with these JSON texts as amounts and currency.
  SampleMetadata priced(const std::string& finalValue, const std::string& regularValue,
                        const std::string& currency = "\"EUR\"") {
    return pricesOf(R"({"uid":"MTIz","price_range":{"minimum_price":{"final_price":{"value":)" +
                    finalValue + R"(,"currency":"NOK"},"regular_price":{"value":)" + regularValue +
                    R"(,"currency":)" + currency + "}}}}");
  }
};

const char kProduct[] = R"({"uid":"MTIz","name":"Title",
    "authors":[{"full_name":"First"},{"full_name":"Second"}],
    "thumbnail":{"url":"https://a.example/cover.jpg"},
    "price_range":{"minimum_price":{"final_price":{"value":7.99,"currency":"EUR"},
                                    "regular_price":{"value":9.99,"currency":"EUR"}}}})";

}  // namespace

// --- The requests --------------------------------------------------------------------------------

TEST_F(SamplesTest, MetadataIsAskedForWithTheCustomersToken) {
  api.sampleMetadata(store, "MTIz");
  expectRequest(
      "{\nproductDetails(uid: \"MTIz\") {\nproduct {\nuid\nname\nthumbnail {\nurl\n}\n"
      "price_range {\nminimum_price {\nfinal_price {\ncurrency\nvalue\n}\nregular_price {\n"
      "currency\nvalue\n}\n}\n}\nauthors {\nfull_name\n}\n}\n}\n}\n",
      "Bearer access");
  EXPECT_TRUE(requestBody()["variables"].isNull());
  EXPECT_EQ(request().limit, 30);
}

TEST_F(SamplesTest, PricesAreAskedForWithTheCustomersToken) {
  api.samplePriceRefresh(store, "MTIz");
  expectRequest(
      "{\nproductDetails(uid: \"MTIz\") {\nproduct {\nuid\nprice_range {\nminimum_price {\n"
      "final_price {\ncurrency\nvalue\n}\nregular_price {\ncurrency\nvalue\n}\n}\n}\n}\n}\n}\n",
      "Bearer access");
}

TEST_F(SamplesTest, NeitherRequestCarriesTheRefreshToken) {
  api.sampleMetadata(store, "MTIz");
  EXPECT_EQ(request().header("RefreshToken"), "");
  api.samplePriceRefresh(store, "MTIz");
  EXPECT_EQ(request().header("RefreshToken"), "");
}

TEST_F(SamplesTest, TheUidGoesIntoTheQueryAsItIs) {
  api.sampleMetadata(store, " a\"b\\c ");
  EXPECT_EQ(requestBody()["query"].asString().substr(0, 34),
            "{\nproductDetails(uid: \" a\"b\\c \") {");
}

// --- Reading a product ---------------------------------------------------------------------------

TEST_F(SamplesTest, AFreshRecordIsEmptyAndABadResponse) {
  expectNothingRead(SampleMetadata());
  EXPECT_EQ(SampleMetadata().error, GraphQLApi::BadResponse);
}

TEST_F(SamplesTest, MetadataIsReadWhole) {
  const SampleMetadata sample = metadataOf(kProduct);
  EXPECT_EQ(sample.error, GraphQLApi::Ok);
  EXPECT_EQ(sample.apiUrl, store.apiUrl);
  EXPECT_EQ(sample.uid, "MTIz");
  EXPECT_EQ(sample.name, "Title");
  EXPECT_EQ(sample.author, "First");
  EXPECT_EQ(sample.price, "EUR 7.99");
  EXPECT_EQ(sample.oldPrice, "EUR 9.99");
  EXPECT_EQ(sample.thumbnailUrl, "https://a.example/cover.jpg");
  EXPECT_THAT(effects(), ElementsAre(responseLine("Sample metadata", answerWith(kProduct))));
}

TEST_F(SamplesTest, APriceRefreshReadsUidAndPricesAlone) {
  const SampleMetadata sample = pricesOf(kProduct);
  EXPECT_EQ(sample.error, GraphQLApi::Ok);
  EXPECT_EQ(sample.uid, "MTIz");
  EXPECT_EQ(sample.price, "EUR 7.99");
  EXPECT_EQ(sample.oldPrice, "EUR 9.99");
  EXPECT_EQ(sample.apiUrl + sample.name + sample.author + sample.thumbnailUrl, "");
  EXPECT_THAT(effects(), ElementsAre(responseLine("Sample price refresh", answerWith(kProduct))));
}

TEST_F(SamplesTest, AProductUnderAnotherUidIsReadButBad) {
  for (const char* uid : {"\"mtiz\"", "\"MTIz \"", "123", "null"}) {
    const std::string product = std::string(R"({"name":"Title","uid":)") + uid + "}";
    const SampleMetadata sample = metadataOf(product);
    EXPECT_EQ(sample.error, GraphQLApi::BadResponse) << uid;
    EXPECT_EQ(sample.name, "Title") << uid;
    EXPECT_EQ(sample.apiUrl, store.apiUrl) << uid;
    EXPECT_EQ(pricesOf(product).error, GraphQLApi::BadResponse) << uid;
  }
}

TEST_F(SamplesTest, WithoutAUsableFirstAuthorThereIsNone) {
  for (const char* authors :
       {"[]", "null", "{}", "\"First\"", "[5]", "[null]", "[{}]", R"([{"full_name":5}])",
        R"([{"full_name":null},{"full_name":"Second"}])"}) {
    const SampleMetadata sample =
        metadataOf(std::string(R"({"uid":"MTIz","authors":)") + authors + "}");
    EXPECT_EQ(sample.author, "") << authors;
    EXPECT_EQ(sample.error, GraphQLApi::Ok) << authors;
  }
}

TEST_F(SamplesTest, WithoutAPictureThereIsNoThumbnail) {
  for (const char* thumbnail : {"null", "{}", "[]", "\"url\""}) {
    EXPECT_EQ(
        metadataOf(std::string(R"({"uid":"MTIz","thumbnail":)") + thumbnail + "}").thumbnailUrl, "")
        << thumbnail;
  }
}

TEST_F(SamplesTest, AnAnswerWithoutAProductIsABadResponse) {
  std::vector<std::string> answers(std::begin(kAnswersWithoutData), std::end(kAnswersWithoutData));
  answers.insert(answers.end(),
                 {R"({"data":{"productDetails":null}})", R"({"data":{"productDetails":[]}})",
                  R"({"data":{"productDetails":{}}})", answerWith("null"), answerWith("[]"),
                  answerWith("\"MTIz\""), R"({"errors":[{"message":{}}]})"});
  for (const std::string& answer : answers) {
    for (const bool whole : {true, false}) {
      platform().http.answer(200, answer);
      const SampleMetadata sample =
          whole ? api.sampleMetadata(store, "MTIz") : api.samplePriceRefresh(store, "MTIz");
      EXPECT_EQ(sample.error, GraphQLApi::BadResponse) << answer;
      expectNothingRead(sample);
    }
  }
  EXPECT_THAT(platform().callsOf({"callback"}), IsEmpty());
}

TEST_F(SamplesTest, AMemberThatIsAnObjectThrows) {
  EXPECT_THROW(metadataOf(R"({"uid":{}})"), Json::LogicError);
  EXPECT_THROW(metadataOf(R"({"uid":"MTIz","name":[]})"), Json::LogicError);
  EXPECT_THROW(metadataOf(R"({"uid":"MTIz","thumbnail":{"url":{}}})"), Json::LogicError);
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(SamplesTest, AFailedTransferIsLoggedButNotTold) {
  platform().http.failTransfer(28);
  const SampleMetadata sample = api.sampleMetadata(store, "MTIz");
  EXPECT_EQ(sample.error, GraphQLApi::NetworkError);
  expectNothingRead(sample);
  platform().http.failTransfer(18, 200, answerWith(kProduct));
  expectNothingRead(api.samplePriceRefresh(store, "MTIz"));
  EXPECT_THAT(effects(), ElementsAre("log 2 Sample metadata failed err = 28, code = 0",
                                     "log 2 Sample price refresh failed err = 18, code = 200"));
}

TEST_F(SamplesTest, AnotherStatusIsToldThenLogged) {
  for (const bool whole : {true, false}) {
    platform().http.answer(401, answerWith(kProduct));
    const SampleMetadata sample =
        whole ? api.sampleMetadata(store, "MTIz") : api.samplePriceRefresh(store, "MTIz");
    EXPECT_EQ(sample.error, GraphQLApi::BadResponse);
    expectNothingRead(sample);
  }
  EXPECT_THAT(
      effects(),
      ElementsAre("callback 0 401", "log 2 Sample metadata failed err = 0, code = 401",
                  "callback 0 401", "log 2 Sample price refresh failed err = 0, code = 401"));
}

TEST_F(SamplesTest, TheBodyOfAFailureIsParsedBeforeTheLog) {
  platform().http.answer(500, std::string(1001, '['));
  EXPECT_THROW(api.sampleMetadata(store, "MTIz"), Json::RuntimeError);
  EXPECT_THAT(effects(), ElementsAre("callback 0 500"));
}

// --- Choosing the prices -------------------------------------------------------------------------

TEST_F(SamplesTest, EqualAmountsGiveOnePrice) {
  for (const char* amount : {"9.99", "\"9.99\""}) {
    EXPECT_EQ(priced(amount, amount).price, "EUR 9.99");
    EXPECT_EQ(priced(amount, amount).oldPrice, "");
  }
}

TEST_F(SamplesTest, AmountsAreComparedAsTextsBeforeFormatting) {
  const SampleMetadata sample = priced("\"9.9\"", "\"9.90\"");
  EXPECT_EQ(sample.price, "EUR 9.90");
  EXPECT_EQ(sample.oldPrice, "EUR 9.90");
}

TEST_F(SamplesTest, AWholeAmountGetsItsCents) {
  EXPECT_EQ(priced("10", "10").price, "EUR 10.00");
}

TEST_F(SamplesTest, TheCurrencyIsTheRegularPricesOwn) {
  EXPECT_EQ(priced("1.5", "2.5", "\"PLN\"").price, "PLN 1.50");
  EXPECT_EQ(priced("1.5", "1.5", "null").price, " 1.50");
}

TEST_F(SamplesTest, WithoutAmountsThePriceIsZero) {
  EXPECT_EQ(priced("null", "null").price, "EUR 0.00");
  EXPECT_EQ(pricesOf(R"({"uid":"MTIz","price_range":{"minimum_price":{}}})").price, " 0.00");
}

TEST_F(SamplesTest, WithoutAPriceRangeThereAreNoPrices) {
  for (const char* range : {"null", "[]", "5", "{}", R"({"minimum_price":null})",
                            R"({"minimum_price":[]})", R"({"minimum_price":"9.99"})"}) {
    const SampleMetadata sample =
        pricesOf(std::string(R"({"uid":"MTIz","price_range":)") + range + "}");
    EXPECT_EQ(sample.price + sample.oldPrice, "") << range;
    EXPECT_EQ(sample.error, GraphQLApi::Ok) << range;
  }
}

TEST_F(SamplesTest, EqualAmountsLeaveAnOldPriceThatTheRecordHad) {
  SampleMetadata sample;
  sample.oldPrice = "EUR 12.00";
  Json::Value range;
  range["minimum_price"]["regular_price"]["value"] = "9";
  range["minimum_price"]["final_price"]["value"] = "9";
  api.fillSamplePrice(sample, range);
  EXPECT_EQ(sample.price, " 9.00");
  EXPECT_EQ(sample.oldPrice, "EUR 12.00");
}

TEST_F(SamplesTest, WithoutAMinimumPriceARecordIsLeft) {
  SampleMetadata sample;
  sample.price = "EUR 1.00";
  Json::Value range(Json::objectValue);
  api.fillSamplePrice(sample, range);
  EXPECT_EQ(sample.price, "EUR 1.00");
}

TEST_F(SamplesTest, PricesThatAreNoObjectsThrow) {
  EXPECT_THROW(pricesOf(R"({"uid":"MTIz","price_range":{"minimum_price":{"regular_price":5}}})"),
               Json::LogicError);
  EXPECT_THROW(priced("{}", "5"), Json::LogicError);
}

// --- Formatting an amount ------------------------------------------------------------------------

TEST_F(SamplesTest, AmountsGetTwoDecimals) {
  const std::pair<const char*, const char*> amounts[] = {
      {"", "0.00"},
      {"10", "10.00"},
      {"9.9", "9.90"},
      {"9,5", "9.50"},
      {"9.99", "9.99"},
      {"9.9900000000000002", "9.99"},
      {"9.999", "10.00"},
      {"0.05", "0.05"},
      {"1,234.56", "1.23"},
      {"1,2,3", "1.20"},
      {"abc", "abc.00"},
      {"-1.5", "-1.-50"},
      {"-0.05", "0.-5"},
      {"-0.001", "0.00"},
      {"0.005", "0.01"},
      {"-0.005", "0.-1"},
      {".5", "0.50"},
      {"5.", "5.00"},
      {".", "0.00"},
      {"a.b", "0.00"},
      {"  9.5", "9.50"},
      {"+9.5", "9.50"},
      {"9.5 EUR", "9.50"},
      {"1.5e2", "150.00"},
      {"1e2", "1e2.00"},
      {"nan", "nan.00"},
      {"nan.", "0.00"},
      {"inf.", "21474836.47"},
      {"-inf.", "-21474836.-48"},
      {"21474836.47", "21474836.47"},
      {"21474836.48", "21474836.47"},
      {"1.0e300", "21474836.47"},
      {"-1.0e300", "-21474836.-48"},
      {"1.0e999", "21474836.47"},
      {"99999999999999999999.99", "21474836.47"},
  };
  for (const auto& amount : amounts) {
    EXPECT_EQ(api.normalizePrice(amount.first), amount.second) << amount.first;
  }
}

TEST_F(SamplesTest, ThePointIsTheDecimalSignInEveryLocale) {
  for (const bool inCpp : {true, false}) {
    EXPECT_TRUE(passesInNewProcess([&] {
      becomeGerman(inCpp);
      EXPECT_EQ(api.normalizePrice("9.99"), "9.99");
      EXPECT_EQ(api.normalizePrice("9,99"), "9.99");
      const SampleMetadata sample = priced("1234.5", "2234.75");
      EXPECT_EQ(sample.price, "EUR 1234.50");
      EXPECT_EQ(sample.oldPrice, "EUR 2234.75");
    }));
  }
}
