Next
