// movie: version="6" rate="10"
// What is undefined leaves nothing between the commas, as it does in any text of this version.
var list = ["a", undefined, "b"]; trace(list); trace(list.join("-") + " " + [undefined].toString().length);
list = []; list[2] = "c"; trace(list);
