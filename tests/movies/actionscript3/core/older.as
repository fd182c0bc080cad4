// movie: version="12" rate="20"
// What came with a later version movies do not see: a name of their own would be found in its place.
import flash.utils.getDefinitionByName;
try { trace(JSON); } catch (e:ReferenceError) { trace(e.errorID); }
try { trace(getDefinitionByName("JSON")); } catch (e:ReferenceError) { trace(e.errorID); }
