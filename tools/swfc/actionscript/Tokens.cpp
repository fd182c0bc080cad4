#include "swfc/actionscript/Tokens.h"

namespace swfc::actionscript
{

std::string_view spelling(Tok kind)
{
    // clang-format off
    switch (kind) {
    case Tok::End: return "end of script";
    case Tok::Identifier: return "a name";
    case Tok::Number: return "a number";
    case Tok::String: return "a string";
    case Tok::SlashPath: return "a path";
    case Tok::Include: return "'#include'";
    case Tok::InitClip: return "'#initclip'";
    case Tok::EndInitClip: return "'#endinitclip'";
    case Tok::LeftBrace: return "'{'";
    case Tok::RightBrace: return "'}'";
    case Tok::LeftParen: return "'('";
    case Tok::RightParen: return "')'";
    case Tok::LeftBracket: return "'['";
    case Tok::RightBracket: return "']'";
    case Tok::Semicolon: return "';'";
    case Tok::Comma: return "','";
    case Tok::Dot: return "'.'";
    case Tok::Question: return "'?'";
    case Tok::Colon: return "':'";
    case Tok::Less: return "'<'";
    case Tok::Greater: return "'>'";
    case Tok::LessEqual: return "'<='";
    case Tok::GreaterEqual: return "'>='";
    case Tok::Equal: return "'=='";
    case Tok::NotEqual: return "'!='";
    case Tok::StrictEqual: return "'==='";
    case Tok::StrictNotEqual: return "'!=='";
    case Tok::Plus: return "'+'";
    case Tok::Minus: return "'-'";
    case Tok::Star: return "'*'";
    case Tok::Slash: return "'/'";
    case Tok::Percent: return "'%'";
    case Tok::PlusPlus: return "'++'";
    case Tok::MinusMinus: return "'--'";
    case Tok::ShiftLeft: return "'<<'";
    case Tok::ShiftRight: return "'>>'";
    case Tok::ShiftRightUnsigned: return "'>>>'";
    case Tok::And: return "'&'";
    case Tok::Or: return "'|'";
    case Tok::Xor: return "'^'";
    case Tok::Not: return "'!'";
    case Tok::Complement: return "'~'";
    case Tok::LogicalAnd: return "'&&'";
    case Tok::LogicalOr: return "'||'";
    case Tok::Assign: return "'='";
    case Tok::PlusAssign: return "'+='";
    case Tok::MinusAssign: return "'-='";
    case Tok::StarAssign: return "'*='";
    case Tok::SlashAssign: return "'/='";
    case Tok::PercentAssign: return "'%='";
    case Tok::ShiftLeftAssign: return "'<<='";
    case Tok::ShiftRightAssign: return "'>>='";
    case Tok::ShiftRightUnsignedAssign: return "'>>>='";
    case Tok::AndAssign: return "'&='";
    case Tok::OrAssign: return "'|='";
    case Tok::XorAssign: return "'^='";
    case Tok::Break: return "'break'";
    case Tok::Case: return "'case'";
    case Tok::Catch: return "'catch'";
    case Tok::Class: return "'class'";
    case Tok::Continue: return "'continue'";
    case Tok::Default: return "'default'";
    case Tok::Delete: return "'delete'";
    case Tok::Do: return "'do'";
    case Tok::Else: return "'else'";
    case Tok::Extends: return "'extends'";
    case Tok::Finally: return "'finally'";
    case Tok::For: return "'for'";
    case Tok::Function: return "'function'";
    case Tok::If: return "'if'";
    case Tok::Import: return "'import'";
    case Tok::In: return "'in'";
    case Tok::InstanceOf: return "'instanceof'";
    case Tok::Interface: return "'interface'";
    case Tok::New: return "'new'";
    case Tok::Return: return "'return'";
    case Tok::Super: return "'super'";
    case Tok::Switch: return "'switch'";
    case Tok::This: return "'this'";
    case Tok::Throw: return "'throw'";
    case Tok::Try: return "'try'";
    case Tok::TypeOf: return "'typeof'";
    case Tok::Var: return "'var'";
    case Tok::Void: return "'void'";
    case Tok::While: return "'while'";
    case Tok::With: return "'with'";
    case Tok::True: return "'true'";
    case Tok::False: return "'false'";
    case Tok::Null: return "'null'";
    case Tok::Undefined: return "'undefined'";
    case Tok::WordAdd: return "'add'";
    case Tok::WordEq: return "'eq'";
    case Tok::WordNe: return "'ne'";
    case Tok::WordLt: return "'lt'";
    case Tok::WordGt: return "'gt'";
    case Tok::WordLe: return "'le'";
    case Tok::WordGe: return "'ge'";
    case Tok::WordAnd: return "'and'";
    case Tok::WordOr: return "'or'";
    case Tok::WordNot: return "'not'";
    }
    // clang-format on
    return "?";
}

std::string describe(const Token& token)
{
    constexpr std::size_t kMaxQuoted = 40;
    switch (token.kind) {
    case Tok::Identifier:
    case Tok::SlashPath:
    case Tok::Number: return "'" + token.text.substr(0, kMaxQuoted) + "'";
    case Tok::String: return "string \"" + token.text.substr(0, kMaxQuoted) + "\"";
    default: return std::string(spelling(token.kind));
    }
}

} // namespace swfc::actionscript
