// movie: version="10"
// Numbers, money, dates and orders of several languages.
import flash.globalization.*;
var n:* = new NumberFormatter("ru-RU");
trace(n.actualLocaleIDName, n.lastOperationStatus, escape(n.groupingSeparator), n.decimalSeparator, n.digitsType);
trace(escape(n.formatNumber(-1234567.891)), n.formatInt(12), n.formatUint(3000000000));
n = new NumberFormatter("en-US"); n.fractionalDigits = 3; n.trailingZeros = false; n.leadingZero = false;
trace(n.formatNumber(0.25), n.formatNumber(1234567.5), n.formatNumber(-0.0001), n.formatNumber(NaN));
n.negativeNumberFormat = 0; trace(n.formatNumber(-12)); n.groupingPattern = "3;2;*"; trace(n.formatNumber(123456789));
n.digitsType = NationalDigitsType.ARABIC_INDIC; trace(n.formatNumber(120));
n = new NumberFormatter("en-US");
var r:* = n.parse("about -1,234.50 m"); trace(r.value, r.startIndex, r.endIndex, n.parseNumber("(12)"), n.parseNumber("12 m"), n.lastOperationStatus);
var c:* = new CurrencyFormatter("en-US"); trace(c.currencyISOCode, c.currencySymbol, c.format(1254.56, true), c.format(-1254.56), c.formattingWithCurrencySymbolIsSafe("USD"));
c = new CurrencyFormatter("ru"); trace(c.format(5, true), c.positiveCurrencyFormat, c.negativeCurrencyFormat);
var p:* = new CurrencyFormatter("en-US").parse("-$1,234.5"); trace(p.value, p.currencyString);
var d:* = new DateTimeFormatter("en-US"); var when:Date = new Date(Date.UTC(2010, 2, 27, 15, 4, 5));
trace(d.formatUTC(when), d.getDateTimePattern());
d.setDateTimeStyles("medium", "short"); trace(d.formatUTC(when), d.getDateTimePattern()); d.setDateTimeStyles("short", "none"); trace(d.formatUTC(when));
d.setDateTimePattern("EEEE, d 'of' MMMM yyyy 'o''clock' HH:mm:ss.SSS G Q a K D"); trace(d.formatUTC(when), d.getDateStyle());
trace(new DateTimeFormatter("ru", "long", "none").formatUTC(when), new DateTimeFormatter("ru").getMonthNames(), new DateTimeFormatter("ru").getMonthNames("full","format")[0], new DateTimeFormatter("ru").getFirstWeekday(), new DateTimeFormatter("en-US").getWeekdayNames("longAbbreviation"));
var k:* = new Collator("ru"); var l:Array = ["ёж", "Ель", "яма", "елка", "абрикос"]; l.sort(k.compare); trace(l);
k = new Collator("en", CollatorMode.MATCHING); trace(k.equals("Résumé", "resume"), k.compare("a-b", "AB"), new Collator("en").equals("a", "A"));
k = new Collator("en"); k.numericComparison = true; trace(k.compare("file9", "file10"));
trace(new StringTools("tr").toUpperCase("istanbul"), new StringTools("en").toUpperCase("straße"));
var i:* = new LocaleID("zh-hant-TW@collation=stroke;x=y"); trace(i.name, i.getLanguage(), i.getScript(), i.getRegion(), i.getKeysAndValues().collation, new LocaleID("ar").isRightToLeft());
trace(LocaleID.determinePreferredLocales(new <String>["fr-CA", "en"], new <String>["en-US", "fr", "ru"]));
trace(new Collator("xx-nowhere").lastOperationStatus, new NumberFormatter(LocaleID.DEFAULT).actualLocaleIDName, Collator.getAvailableLocaleIDNames().length > 100);
try { new Collator(null); } catch (e:Error) { trace(e); }
try { new DateTimeFormatter("en", "huge"); } catch (e:Error) { trace(e); }
